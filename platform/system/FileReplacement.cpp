#include <platform/FileReplacement.h>

#include <cerrno>
#include <cstdio>
#include <random>
#include <utility>

#include <fcntl.h>
#include <sys/stat.h>

#include "system/FilePath.h"
#include "system/OwnedDescriptor.h"

namespace platform {
namespace {

constexpr int kNames = 100; // that are tried before a directory is given up
constexpr mode_t kUserOnly = S_IRUSR | S_IWUSR;
constexpr mode_t kEverybody = kUserOnly | S_IRGRP | S_IWGRP | S_IROTH | S_IWOTH;

// Also behind a link whose file is still to be made.
std::string NameOf(int descriptor) {
    return "/proc/self/fd/" + std::to_string(descriptor);
}

// Tries `make` with new names in the directory until it takes one; 0 or why it takes none.
template <class TMake>
int WithNewName(const std::string& directory, std::string& name, TMake make) {
    std::random_device random;
    for (int attempt = 0; attempt < kNames; ++attempt) {
        char last[32];
        std::snprintf(last, sizeof last, "/.zrhttp-%08x", random());
        name = directory + last;
        if (make(name.c_str())) return 0;
        if (errno != EEXIST) break;
    }
    const int error = errno;
    name.clear();
    return error;
}

// -1 where the file system, or a system without /proc, cannot give it a name later.
int OpenNameless(const std::string& directory, mode_t mode) {
    OwnedDescriptor file(open(directory.c_str(), O_TMPFILE | O_WRONLY | O_CLOEXEC, mode));
    const bool isReachable = file.IsOpen() && access(NameOf(file.Get()).c_str(), F_OK) == 0;
    return isReachable ? file.Release() : -1;
}

bool LinkTo(int descriptor, const char* name) {
    return linkat(AT_FDCWD, NameOf(descriptor).c_str(), AT_FDCWD, name, AT_SYMLINK_FOLLOW) == 0;
}

// Who may read the old content may read the new one, and nobody else.
int TakeAccessOf(const struct stat& before, int descriptor) {
    // Giving a file away is the administrator's right; giving it to a group, its members'.
    if (fchown(descriptor, before.st_uid, before.st_gid) != 0)
        static_cast<void>(fchown(descriptor, static_cast<uid_t>(-1), before.st_gid) == 0);
    return fchmod(descriptor, before.st_mode & 07777) == 0 ? 0 : errno;
}

// So that the new name itself survives a crash; where a directory cannot be flushed it stands
// anyway.
void FlushDirectoryOf(const std::string& name) {
    const OwnedDescriptor directory(
        open(DirectoryOf(name).c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (directory.IsOpen()) fsync(directory.Get());
}

} // namespace

FileReplacement::~FileReplacement() {
    if (m_descriptor >= 0) close(m_descriptor);
    if (!m_temporary.empty()) unlink(m_temporary.c_str());
}

int FileReplacement::Open(const std::string& name, Access access) {
    m_target = BehindLinks(name);
    m_isFlushed = access == Access::userOnly;
    struct stat before {};
    const bool exists = stat(m_target.c_str(), &before) == 0;
    if (exists && S_ISDIR(before.st_mode)) return EISDIR;
    if (exists && ::access(m_target.c_str(), W_OK) != 0) return errno;
    m_isSpecial = exists && !S_ISREG(before.st_mode);
    if (m_isSpecial) return 0;
    const bool isUsersMask = access == Access::shared && !exists;
    if (const int error = OpenContent(isUsersMask ? kEverybody : kUserOnly)) return error;
    if (isUsersMask) return 0;
    if (access == Access::shared) return TakeAccessOf(before, m_descriptor);
    return fchmod(m_descriptor, kUserOnly) == 0 ? 0 : errno; // whatever the user's mask takes
}

int FileReplacement::OpenContent(unsigned mode) {
    const std::string directory = DirectoryOf(m_target);
    m_descriptor = OpenNameless(directory, mode);
    if (m_descriptor >= 0) return 0;
    return WithNewName(directory, m_temporary, [&](const char* name) {
        m_descriptor = open(name, O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, mode);
        return m_descriptor >= 0;
    });
}

int FileReplacement::Write(std::string_view bytes) {
    if (m_isSpecial && m_descriptor < 0) {
        m_descriptor = open(m_target.c_str(), O_WRONLY | O_CLOEXEC | O_NOCTTY);
        if (m_descriptor < 0) return errno;
    }
    while (!bytes.empty()) {
        const ssize_t written = write(m_descriptor, bytes.data(), bytes.size());
        if (written < 0 && errno == EINTR) continue;
        if (written < 0) return errno;
        bytes.remove_prefix(static_cast<std::size_t>(written));
    }
    return 0;
}

int FileReplacement::Commit() {
    if (!m_isSpecial) {
        if (m_isFlushed && fsync(m_descriptor) != 0 && errno != EINVAL) return errno;
        if (const int error = TakeName()) return error;
    }
    const int descriptor = std::exchange(m_descriptor, -1);
    if (descriptor >= 0 && close(descriptor) != 0 && errno != EINTR) return errno;
    return 0;
}

int FileReplacement::TakeName() {
    if (m_temporary.empty()) {
        const bool isNew = LinkTo(m_descriptor, m_target.c_str());
        if (!isNew && errno != EEXIST) return errno;
        // A link does not replace a name, so for a moment the content has another one.
        if (!isNew)
            if (const int error =
                    WithNewName(DirectoryOf(m_target), m_temporary,
                                [this](const char* name) { return LinkTo(m_descriptor, name); }))
                return error;
    }
    if (!m_temporary.empty() && rename(m_temporary.c_str(), m_target.c_str()) != 0) return errno;
    m_temporary.clear();
    if (m_isFlushed) FlushDirectoryOf(m_target);
    return 0;
}

std::string FileReplacement::WorkingName() const {
    if (m_isSpecial) return m_target;
    return m_temporary.empty() ? NameOf(m_descriptor) : m_temporary;
}

std::uint64_t FileReplacement::Length() const {
    struct stat status {};
    const bool isKnown = m_descriptor >= 0 && fstat(m_descriptor, &status) == 0;
    return isKnown && S_ISREG(status.st_mode) ? static_cast<std::uint64_t>(status.st_size) : 0;
}

} // namespace platform
