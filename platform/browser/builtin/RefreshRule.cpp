#include "browser/builtin/RefreshRule.h"

#include <algorithm>

#include "browser/builtin/Limits.h"
#include "browser/common/HeaderBlock.h"

namespace platform {
namespace {

void SkipAnyOf(std::string_view& text, std::string_view characters) {
    text.remove_prefix(std::min(text.find_first_not_of(characters), text.size()));
}

constexpr std::string_view kBlanks = " \t\n\f\r";

// The URL behind the delay: "url=" in any case is optional, quotes around it are taken off.
std::string ParseReference(std::string_view text) {
    SkipAnyOf(text, kBlanks);
    if (EqualsIgnoringCase(text.substr(0, 3), "url")) {
        std::string_view rest = text.substr(3);
        SkipAnyOf(rest, kBlanks);
        if (rest.starts_with('=')) {
            text = rest.substr(1);
            SkipAnyOf(text, kBlanks);
        }
    }
    if (text.starts_with('"') || text.starts_with('\'')) {
        const char quote = text.front();
        text.remove_prefix(1);
        text = text.substr(0, text.find(quote));
    }
    return std::string(text);
}

} // namespace

std::optional<RefreshRule> ParseRefresh(std::string_view text) {
    SkipAnyOf(text, kBlanks);
    constexpr std::string_view digits = "0123456789";
    const std::size_t digitCount = std::min(text.find_first_not_of(digits), text.size());
    if (digitCount == 0 && !text.starts_with('.')) return std::nullopt;
    RefreshRule rule;
    for (const char ch : text.substr(0, digitCount))
        rule.seconds = std::min(rule.seconds * 10 + (ch - '0'), kMaxRefreshSeconds);
    text.remove_prefix(digitCount);
    SkipAnyOf(text, "0123456789."); // fractions do not count
    if (text.empty()) return rule;
    if (std::string_view(";, \t\n\f\r").find(text.front()) == std::string_view::npos)
        return std::nullopt;
    SkipAnyOf(text, kBlanks);
    if (text.starts_with(';') || text.starts_with(',')) text.remove_prefix(1);
    rule.reference = ParseReference(text);
    return rule;
}

} // namespace platform
