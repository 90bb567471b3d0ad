// Character sets of pages and terminals, by the names that the system's iconv knows.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace zrhttp {

// The encoding for a label of the WHATWG encoding standard ("latin1" is windows-1252, as browsers
// have it), in any case and with white space around it. Nothing for an unknown one.
std::optional<std::string> EncodingFromLabel(std::string_view label);

// Whether the system can convert from and to this encoding.
bool IsKnownEncoding(const std::string& encoding);

// What is no text in the encoding becomes U+FFFD. The encoding must be known.
std::string Utf8FromEncoding(std::string_view bytes, const std::string& encoding);

// Characters that the encoding lacks become "?". The encoding must be known.
std::string EncodingFromUtf8(std::string_view utf8, const std::string& encoding);

} // namespace zrhttp
