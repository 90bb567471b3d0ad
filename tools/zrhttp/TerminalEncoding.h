// The encoding of terminals, pipes and arguments: the locale's.
#pragma once

#include <string>
#include <string_view>

namespace zrhttp {

// The codeset that LC_ALL, LC_CTYPE and LANG ask for, also when that locale is not installed;
// UTF-8 for the C locale and for a codeset that the system does not know.
std::string TerminalEncoding();

// Both as Encodings.h has it.
std::string Utf8FromTerminal(std::string_view text);
std::string TerminalFromUtf8(std::string_view utf8);

} // namespace zrhttp
