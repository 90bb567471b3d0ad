#include "compose/LineEnds.h"

#include <algorithm>

std::size_t LineEnds::LengthWithCrLf(std::string_view text) {
    return text.size() + static_cast<std::size_t>(std::count(text.begin(), text.end(), '\n'));
}

void LineEnds::AppendWithCrLf(std::string& target, std::string_view text) {
    std::size_t begin = 0;
    std::size_t lineEnd = text.find('\n');
    while (lineEnd != std::string_view::npos) {
        const bool hasCr = lineEnd > 0 && text[lineEnd - 1] == '\r';
        target += text.substr(begin, lineEnd - begin);
        target += hasCr ? "\n" : "\r\n";
        begin = lineEnd + 1;
        lineEnd = text.find('\n', begin);
    }
    target += text.substr(begin);
}
