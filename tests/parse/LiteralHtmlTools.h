// The text tools once more, each rule written down as one replacement after the other, however
// slow: what the one-pass tools are compared with.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace literal {

// The names for the characters 160 to 255, in this order.
const std::vector<std::string>& Latin1Names();

std::string RemoveTags(std::string_view page);
std::string RemoveSections(std::string page, std::string_view start, std::string_view end);
std::string Decode(std::string_view page, bool format);
std::string PureText(std::string page, bool compact);

} // namespace literal
