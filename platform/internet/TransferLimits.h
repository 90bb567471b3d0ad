// What a hostile or broken server can make a transfer do, at most.
#pragma once

#include <chrono>
#include <cstddef>

namespace platform {

// As many as common browsers follow; a loop ends here.
constexpr int kMaxRedirects = 20;
// All header lines of one reply, redirects not added up. Servers themselves accept far less.
constexpr std::size_t kMaxHeaderBytes = 256 * 1024;
// The body of a redirect is not shown; it is read only to keep the connection.
constexpr std::size_t kMaxRedirectBodyBytes = 64 * 1024;
constexpr std::chrono::milliseconds kRedirectBodyPatience{100};
// Until a connection stands, TLS included. A user gives up earlier.
constexpr std::chrono::seconds kConnectTimeout{60};

} // namespace platform
