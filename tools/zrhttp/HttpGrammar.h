// The grammar of what arguments put into a request (RFC 9110).
#pragma once

#include <string>
#include <string_view>

#include <platform/String.h>

namespace zrhttp {

// token: header names and the two halves of a media type.
bool IsToken(std::string_view text);
// C0 and DEL.
bool IsControl(char ch);
// Also UTF-8 text can be asked: its other bytes are no controls.
bool HasControls(std::string_view text);

// A header line in the ANSI code page. Throws UsageError, naming the argument and the header, but
// never the value.
CString CheckedHeaderLine(const std::string& argument, const std::string& line);

} // namespace zrhttp
