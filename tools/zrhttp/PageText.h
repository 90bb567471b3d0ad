// Pages as text to read.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace zrhttp {

// The encoding of a page: told by its byte-order mark or else its meta element; without both UTF-8
// when the bytes are that, else windows-1252.
std::string EncodingOfPage(std::string_view page);

// The page's readable text in UTF-8, ending with a line feed. encoding: one that is known; empty
// for EncodingOfPage.
std::string PageAsText(std::string_view page, const std::string& encoding, bool isCompact);

} // namespace zrhttp
