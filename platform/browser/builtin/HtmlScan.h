// What the engine needs to know of an HTML document: its frames and whether it sends the reader
// on.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "browser/builtin/RefreshRule.h"

namespace platform {

struct HtmlScan {
    std::vector<std::string> frames;    // absolute URLs in document order
    std::optional<RefreshRule> refresh; // its reference is an absolute URL
};

// Any thread. A document too deep or too large for a tree has no frames and no refresh; `problem`
// then says why, and is empty otherwise. References go against pageUrl or the document's base
// element; frames without a page of their own are left out.
HtmlScan ScanHtml(std::string_view bytes, const std::string& pageUrl, std::string& problem);

} // namespace platform
