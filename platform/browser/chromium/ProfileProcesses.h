// The processes of an application, found by its profile directory.
#pragma once

#include <string>

namespace platform {

// Kills what is left of an application whose program has gone, also what is stopped. False, and
// nothing is done, when its supervisor runs: that one gives the browser time to end.
bool EndProcessesOf(const std::string& profile);

} // namespace platform
