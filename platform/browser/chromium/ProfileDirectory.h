// Where one browser process keeps its files.
#pragma once

#include <optional>
#include <string>

#include "system/OwnedDescriptor.h"

namespace platform {

// While the lock is held, by the program that made it, the directory is in use.
struct LockedProfile {
    std::string path;
    OwnedDescriptor lock; // not open where directories cannot be locked
};

// Makes an empty directory that only the user may enter: in memory where there is room, which
// saves a browser's start the wait for a disk. Empty with errno when none can be made.
std::optional<LockedProfile> MakeProfileDirectory();

// Removes the directory, and kills what is left of the processes that use it, if its program has
// gone and no supervisor is about to do so. Nothing happens to what is no such directory of this
// user's or cannot be locked.
void RemoveIfAbandoned(const std::string& path);
// Does so with all directories of earlier applications, wherever they can be.
void RemoveAbandonedProfiles();

} // namespace platform
