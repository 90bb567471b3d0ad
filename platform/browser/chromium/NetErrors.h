// Why a page could not be loaded, in plain words.
#pragma once

#include <string>

namespace platform {

inline constexpr const char* kBrokenOff = "the connection broke off";
inline constexpr const char* kMaySendTwice = "this browser may send post data twice; take another "
                                             "one, or set ZRHTTP_REPEATED_POST=1 to have "
                                             "them sent all the same";
inline constexpr const char* kConnectionsStay =
    "the browser does not close its idle connections, on which it might send post data twice";

// `error` is the browser's name for it ("net::ERR_..."). The text holds neither user information
// nor a query.
std::string NetErrorText(const std::string& error, const std::string& url);

} // namespace platform
