// Whether there is a network, and whether the user wants it to be used.
#pragma once

#include <string>

namespace platform {

// Whether an interface other than loopback is up.
bool IsNetworkUp();

// The user's choice, kept in the registry.
bool IsUserOffline();
// False when the registry does not take it.
bool EndUserOffline();

// Whether the URL's host is this computer, which can be reached without a network.
bool IsLoopbackUrl(const std::string& url);

} // namespace platform
