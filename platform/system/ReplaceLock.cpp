#include "system/ReplaceLock.h"

#include <cerrno>

#include <fcntl.h>
#include <sys/file.h>

#include "system/FilePath.h"
#include "system/FileWait.h"

namespace platform {

namespace {

std::recursive_mutex& ThreadsOfThisProcess() {
    static std::recursive_mutex mutex;
    return mutex;
}

} // namespace

ReplaceLock::ReplaceLock(const std::string& fileName)
    : m_threads(ThreadsOfThisProcess()),
      m_directory(open(DirectoryOf(fileName).c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)),
      m_error(Acquire(fileName)) {}

// Unlocked rather than just closed: a process that is being started may hold a copy for a moment.
ReplaceLock::~ReplaceLock() {
    if (m_directory.IsOpen()) flock(m_directory.Get(), LOCK_UN);
}

int ReplaceLock::Acquire(const std::string& fileName) {
    if (!m_directory.IsOpen()) return errno == ENOENT || errno == ENOTDIR ? errno : 0;
    FileWait wait(fileName);
    while (flock(m_directory.Get(), LOCK_EX | LOCK_NB) != 0) {
        if (errno == EINTR) continue;
        if (errno != EWOULDBLOCK) return 0;
        if (!wait.GoesOn()) return EBUSY;
    }
    wait.Forget();
    return 0;
}

} // namespace platform
