#include "zrhttp/HttpGrammar.h"

#include <algorithm>

#include "zrhttp/CharacterSets.h"
#include "zrhttp/Errors.h"

namespace zrhttp {

bool IsToken(std::string_view text) {
    constexpr std::string_view kMarks = "!#$%&'*+-.^_`|~";
    return !text.empty() && std::all_of(text.begin(), text.end(), [&](char ch) {
        return (ch >= '0' && ch <= '9') || (ch >= 'a' && ch <= 'z') || (ch >= 'A' && ch <= 'Z') ||
               kMarks.find(ch) != std::string_view::npos;
    });
}

bool IsControl(char ch) {
    return static_cast<unsigned char>(ch) < 0x20 || ch == 0x7F;
}

bool HasControls(std::string_view text) {
    return std::any_of(text.begin(), text.end(), IsControl);
}

CString CheckedHeaderLine(const std::string& argument, const std::vector<std::string>& lines,
                          std::size_t index) {
    const std::string& line = lines[index];
    const std::string name = line.substr(0, line.find(':'));
    // What is no name may be a value, which no message shows.
    if (name.size() == line.size() || !IsToken(name))
        throw UsageError(argument + " number " + std::to_string(index + 1) +
                         ": expected \"Name: value\"");
    if (std::any_of(line.begin(), line.end(), [](char ch) { return IsControl(ch) && ch != '\t'; }))
        throw UsageError(argument + ": '" + name +
                         "': contains a line break or another control character");
    return AnsiFromArgument(argument + ": '" + name + "'", line);
}

} // namespace zrhttp
