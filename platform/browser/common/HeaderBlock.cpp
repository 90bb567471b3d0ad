#include "browser/common/HeaderBlock.h"

#include <algorithm>

namespace platform {
namespace {

char LowerAscii(char ch) {
    return ch >= 'A' && ch <= 'Z' ? static_cast<char>(ch - 'A' + 'a') : ch;
}

bool IsTokenCharacter(char ch) {
    const char lower = LowerAscii(ch);
    return (lower >= 'a' && lower <= 'z') || (ch >= '0' && ch <= '9') ||
           (ch != '\0' && std::string_view("!#$%&'*+-.^_`|~").find(ch) != std::string_view::npos);
}

std::string_view Trim(std::string_view text) {
    const std::size_t begin = std::min(text.find_first_not_of(" \t"), text.size());
    text.remove_prefix(begin);
    return text.substr(0, text.find_last_not_of(" \t") + 1);
}

std::optional<HeaderField> ParseLine(std::string_view line, std::string& error) {
    const std::size_t colon = line.find(':');
    if (line.find_first_of(std::string_view("\r\n\0", 3)) != std::string_view::npos)
        error = "the header block holds a stray CR, LF or NUL";
    else if (colon == std::string_view::npos)
        error = "the header block holds a line without \":\"";
    else if (!IsToken(line.substr(0, colon)))
        error = "the header block holds an invalid field name";
    else
        return HeaderField{std::string(line.substr(0, colon)),
                           std::string(Trim(line.substr(colon + 1)))};
    return std::nullopt;
}

// Fields that decide where the request ends.
bool IsFramingInOrder(const HeaderField& field, std::size_t bodyLength, std::string& error) {
    if (EqualsIgnoringCase(field.name, "Transfer-Encoding"))
        error = "the header block must not set Transfer-Encoding";
    else if (EqualsIgnoringCase(field.name, "Content-Length") &&
             field.value != std::to_string(bodyLength))
        error = "the Content-Length in the header block is not the length of the data";
    return error.empty();
}

} // namespace

bool EqualsIgnoringCase(std::string_view a, std::string_view b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [](char x, char y) { return LowerAscii(x) == LowerAscii(y); });
}

bool IsToken(std::string_view text) {
    return !text.empty() && std::all_of(text.begin(), text.end(), IsTokenCharacter);
}

std::optional<std::vector<HeaderField>>
ParseHeaderBlock(std::string_view block, std::size_t bodyLength, std::string& error) {
    std::vector<HeaderField> fields;
    error.clear();
    while (!block.empty()) {
        const std::size_t end = std::min(block.find("\r\n"), block.size());
        auto field = ParseLine(block.substr(0, end), error);
        if (!field || !IsFramingInOrder(*field, bodyLength, error)) return std::nullopt;
        if (!EqualsIgnoringCase(field->name, "Content-Length")) fields.push_back(std::move(*field));
        block.remove_prefix(std::min(end + 2, block.size()));
    }
    return fields;
}

} // namespace platform
