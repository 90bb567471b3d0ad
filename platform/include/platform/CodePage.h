// Conversions between the ANSI code page (1252), UTF-8 and UTF-16.
#pragma once

#include <string>
#include <string_view>

#include "Export.h"
#include "String.h"

ZRHB_EXPORT_BEGIN

namespace platform {

// Every one of the 256 bytes has its character (the five without one stand for the C1 controls),
// so that bytes to UTF-16 and back gives the same bytes. Unmappable characters become "?".
std::u16string WideFromAnsi(std::string_view ansi);
std::string AnsiFromWide(std::u16string_view wide);

// Invalid UTF-8 becomes U+FFFD (one for each maximal part, as the WHATWG encoding standard has
// it); unpaired surrogates become U+FFFD as well.
std::u16string WideFromUtf8(std::string_view utf8);
std::string Utf8FromWide(std::u16string_view wide);

CString AnsiFromUtf8(std::string_view utf8);
std::string Utf8FromAnsi(std::string_view ansi);

} // namespace platform

ZRHB_EXPORT_END
