// The lock under which files are read, changed and replaced as a whole.
#pragma once

#include <mutex>
#include <string>

#include "system/OwnedDescriptor.h"

namespace platform {

// Held by one thread of all processes. It is on the file's directory, which stays when the file is
// replaced, so that no lock file is needed and none is left behind; it ends with its process. On a
// file system that locks no directories it holds for the threads of this process only.
class ReplaceLock {
public:
    // For the file with that name (a link's target is the one to be named). Waits as FileWait has
    // it; a thread may hold locks on several directories, but not two on one.
    explicit ReplaceLock(const std::string& fileName);
    ~ReplaceLock();
    ReplaceLock(const ReplaceLock&) = delete;
    ReplaceLock& operator=(const ReplaceLock&) = delete;

    // 0 when it is held; EBUSY when somebody else held it too long, or why there is no directory.
    int Error() const { return m_error; }

private:
    int Acquire(const std::string& fileName);

    std::unique_lock<std::recursive_mutex> m_threads;
    OwnedDescriptor m_directory;
    int m_error;
};

} // namespace platform
