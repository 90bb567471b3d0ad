// Line ends of text in parts of a multipart body.
#pragma once

#include <string>
#include <string_view>

namespace LineEnds {

// The most characters that AppendWithCrLf adds for the text.
std::size_t LengthWithCrLf(std::string_view text);
// Every LF that follows no CR becomes CR LF; lone CRs stay.
void AppendWithCrLf(std::string& target, std::string_view text);

} // namespace LineEnds
