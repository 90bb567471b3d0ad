// The platform's own settings: environment variable first, then section "Platform" of
// platform.ini in the settings directory (the key is the variable's name), then the default.
#pragma once

#include <vector>

#include <platform/String.h>

namespace platform {

struct Setting {
    CString name;   // ZRHTTP_...
    CString value;
    CString source; // "environment", "platform.ini" or "default"
};

// The named setting (one of those that AllSettings lists).
Setting GetSetting(const char* pszName);
std::vector<Setting> AllSettings();

} // namespace platform
