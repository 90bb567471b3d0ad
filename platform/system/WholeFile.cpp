#include "system/WholeFile.h"

#include <cerrno>

#include <fcntl.h>
#include <sys/stat.h>

#include <platform/FileReplacement.h>

#include "system/OwnedDescriptor.h"

namespace platform {
namespace {

int ReadAtMost(int descriptor, std::size_t limit, std::string& content) {
    char chunk[64 * 1024];
    for (;;) {
        const ssize_t count = read(descriptor, chunk, sizeof chunk);
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) return errno;
        if (count == 0) return 0;
        content.append(chunk, static_cast<std::size_t>(count));
        if (content.size() > limit) return EFBIG;
    }
}

} // namespace

int ReadWholeFile(const std::string& name, std::size_t limit, std::string& content) {
    content.clear();
    const OwnedDescriptor file(open(name.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    struct stat status {};
    if (!file.IsOpen() || fstat(file.Get(), &status) != 0) return errno;
    if (!S_ISREG(status.st_mode)) return EISDIR;
    if (status.st_size > 0 && static_cast<std::size_t>(status.st_size) > limit) return EFBIG;
    return ReadAtMost(file.Get(), limit, content);
}

int ReplaceWholeFile(const std::string& name, std::string_view content) {
    FileReplacement file;
    if (const int error = file.Open(name, FileReplacement::Access::userOnly)) return error;
    if (const int error = file.Write(content)) return error;
    return file.Commit();
}

} // namespace platform
