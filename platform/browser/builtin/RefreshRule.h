// The refresh that a page asks for, by a meta element or the reply's Refresh field (WHATWG HTML,
// "shared declarative refresh steps").
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace platform {

struct RefreshRule {
    int seconds = 0;
    std::string reference; // empty: the same page again
};

// "5; url='next.htm'" and the like; empty when the text is none.
std::optional<RefreshRule> ParseRefresh(std::string_view text);

} // namespace platform
