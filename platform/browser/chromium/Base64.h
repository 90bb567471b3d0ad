// Base64 (RFC 4648), in which the browser passes bytes.
#pragma once

#include <string>
#include <string_view>

namespace platform {

std::string EncodeBase64(std::string_view bytes);
// Empty when the text is malformed.
std::string DecodeBase64(std::string_view text);

} // namespace platform
