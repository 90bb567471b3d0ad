#include "zrhttp/OutputFile.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <random>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

#include "zrhttp/Errors.h"

namespace zrhttp {
namespace {

// The file that a path stands for, behind symbolic links: the link stays a link.
std::string FollowLinks(const std::string& path) {
    std::error_code ignored;
    const auto target = std::filesystem::weakly_canonical(path, ignored);
    return target.empty() ? path : target.string();
}

std::string TemporaryName(const std::string& target) {
    std::random_device random;
    char suffix[32];
    std::snprintf(suffix, sizeof suffix, ".%08x.tmp", random());
    return target + suffix;
}

} // namespace

OutputFile::OutputFile(const std::string& path) : m_path(path), m_target(FollowLinks(path)) {
    struct stat status {};
    const bool exists = stat(m_target.c_str(), &status) == 0;
    if (exists && S_ISDIR(status.st_mode)) Fail(EISDIR);
    if (exists && access(m_target.c_str(), W_OK) != 0) Fail(errno);
    m_isSpecial = exists && !S_ISREG(status.st_mode);
    if (m_isSpecial) return;
    OpenTemporary();
    // Whoever may not read the old content may not read the new one.
    if (exists) fchmod(m_descriptor, status.st_mode & 07777);
}

OutputFile::~OutputFile() {
    if (m_descriptor >= 0) close(m_descriptor);
    if (!m_temporary.empty()) unlink(m_temporary.c_str());
}

void OutputFile::OpenTemporary() {
    do {
        m_temporary = TemporaryName(m_target);
        m_descriptor = open(m_temporary.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
    } while (m_descriptor < 0 && errno == EEXIST);
    if (m_descriptor >= 0) return;
    m_temporary.clear();
    Fail(errno);
}

void OutputFile::Write(std::string_view bytes) {
    // A pipe is opened here only: opening it waits for its reader.
    if (m_isSpecial && m_descriptor < 0)
        m_descriptor = open(m_target.c_str(), O_WRONLY | O_CLOEXEC);
    if (m_descriptor < 0) Fail(errno);
    while (!bytes.empty()) {
        const ssize_t written = write(m_descriptor, bytes.data(), bytes.size());
        if (written < 0 && errno == EINTR) continue;
        if (written < 0) Fail(errno);
        bytes.remove_prefix(static_cast<std::size_t>(written));
    }
}

void OutputFile::Commit() {
    if (close(std::exchange(m_descriptor, -1)) != 0) Fail(errno);
    if (m_isSpecial) return;
    if (rename(m_temporary.c_str(), m_target.c_str()) != 0) Fail(errno);
    m_temporary.clear();
}

void OutputFile::Fail(int error) const {
    throw SystemError("cannot write '" + m_path + "': " + std::strerror(error));
}

} // namespace zrhttp
