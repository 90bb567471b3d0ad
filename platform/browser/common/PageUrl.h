// URLs of pages: what a caller may ask for, and what a page may refer to.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace platform {

// The URL in the form in which it is requested and shown: ASCII only, with a scheme (http, https,
// file, or "about:blank"), without user information.
struct PageUrl {
    std::string url;
    std::string user;     // percent-decoded, from the user information
    std::string password; // percent-decoded
};

// What a caller typed. Without a scheme it means http; drive paths and absolute paths are file
// pages; non-ASCII characters are percent-encoded as UTF-8. Empty, with the reason in plain words
// (never repeating the URL), when it cannot be requested.
std::optional<PageUrl> ParsePageUrl(std::u16string_view text, std::string& error);

// A reference (UTF-8) in the page at baseUrl, made absolute and without user information. Empty
// when it is malformed. The scheme may be any.
std::optional<std::string> ResolveReference(const std::string& baseUrl, std::string_view reference);

// "http", "https", "file", ...: what stands before the colon, in lower case; empty without one.
std::string SchemeOf(std::string_view url);
bool IsHttpUrl(std::string_view url);
std::string WithoutFragment(const std::string& url);
// Scheme, host and port; empty for URLs that have no host.
std::string OriginOf(const std::string& url);

} // namespace platform
