// What a new registry holds: the MIME database entries of the two types that the client relies on.
//
// The browser engine shows a reply's type as text when the "Extension" of the type's entry equals
// that of text/plain. Whoever wants a type shown as text for a while copies the entry of text/plain
// onto the type's own.
#pragma once

#include <array>

namespace platform {

struct RegistrySeedEntry {
    const char* key; // below HKEY_CLASSES_ROOT
    const char* name;
    const char* text; // REG_SZ
};

constexpr std::array kRegistrySeed = {
    RegistrySeedEntry{R"(MIME\Database\Content Type\text/plain)", "Extension", ".txt"},
    RegistrySeedEntry{R"(MIME\Database\Content Type\text/html)", "Extension", ".htm"},
};

} // namespace platform
