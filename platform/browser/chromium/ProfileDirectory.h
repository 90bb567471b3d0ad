// Where one browser process keeps its files.
#pragma once

#include <string>

namespace platform {

// Makes an empty directory that only the user may enter: in memory where there is room, which
// saves a browser's start the wait for a disk. Empty when none can be made.
std::string MakeProfileDirectory();

} // namespace platform
