// Texts between the terminal and the library (ANSI code page 1252).
#pragma once

#include <string>
#include <string_view>

#include <platform/String.h>

namespace zrhttp {

bool IsUtf8(std::string_view bytes);

// A text in the terminal's encoding. Throws UsageError, naming the argument, when it is none or
// has characters outside the ANSI code page.
CString AnsiFromArgument(std::string_view argument, std::string_view text);

// Bytes of unknown origin as UTF-8: those that are valid UTF-8 stay as they are, all others are
// taken as ANSI.
std::string TextFromBytes(std::string_view bytes);

} // namespace zrhttp
