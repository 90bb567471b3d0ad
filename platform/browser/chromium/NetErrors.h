// Why a page could not be loaded, in plain words.
#pragma once

#include <string>

namespace platform {

inline constexpr const char* kBrokenOff = "the connection broke off";

// `error` is the browser's name for it ("net::ERR_..."). The text holds neither user information
// nor a query.
std::string NetErrorText(const std::string& error, const std::string& url);

} // namespace platform
