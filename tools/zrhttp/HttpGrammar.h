// The grammar of what arguments put into a request (RFC 9110).
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include <platform/String.h>

namespace zrhttp {

// token: header names and the two halves of a media type.
bool IsToken(std::string_view text);
// C0 and DEL.
bool IsControl(char ch);
// Also UTF-8 text can be asked: its other bytes are no controls.
bool HasControls(std::string_view text);

// One of the argument's header lines in the ANSI code page. Throws UsageError, naming the argument
// and the header or, when there is none, the place of the line, but never the value.
CString CheckedHeaderLine(const std::string& argument, const std::vector<std::string>& lines,
                          std::size_t index);

} // namespace zrhttp
