// Text from the network made safe for a terminal.
#pragma once

#include <string>
#include <string_view>

namespace zrhttp {

// One line of UTF-8 text with every control character made visible: C0 and DEL in caret notation
// ("^[" for escape), C1 and the characters that turn the writing direction as "<U+009B>".
std::string PrintableLine(std::string_view utf8);

// As PrintableLine, with tabs and line ends (LF, CR LF) kept.
std::string PrintableText(std::string_view utf8);

} // namespace zrhttp
