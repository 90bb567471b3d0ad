#include "system/WholeFile.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <memory>

#include <fcntl.h>
#include <sys/stat.h>

#include "system/OwnedDescriptor.h"

namespace platform {

namespace {

int WriteAll(int descriptor, std::string_view content) {
    while (!content.empty()) {
        const ssize_t written = write(descriptor, content.data(), content.size());
        if (written < 0 && errno == EINTR) continue;
        if (written < 0) return errno;
        content.remove_prefix(static_cast<std::size_t>(written));
    }
    return 0;
}

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

int WriteAndFlush(OwnedDescriptor& file, std::string_view content) {
    if (const int error = WriteAll(file.Get(), content)) return error;
    if (fsync(file.Get()) != 0 || !file.Close()) return errno;
    return 0;
}

// So that the rename itself survives a crash; where a directory cannot be flushed it stands anyway.
void FlushDirectoryOf(const std::string& name) {
    const OwnedDescriptor handle(
        open(DirectoryOf(name).c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (handle.IsOpen()) fsync(handle.Get());
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
    const std::string target = WithoutLink(name);
    std::string temporary = target + ".XXXXXX";
    OwnedDescriptor file(mkostemp(temporary.data(), O_CLOEXEC)); // made with mode 0600
    if (!file.IsOpen()) return errno;
    int error = WriteAndFlush(file, content);
    if (error == 0 && rename(temporary.c_str(), target.c_str()) != 0) error = errno;
    if (error != 0) {
        unlink(temporary.c_str());
        return error;
    }
    FlushDirectoryOf(target);
    return 0;
}

std::string WithoutLink(const std::string& name) {
    struct Free {
        void operator()(char* text) const { std::free(text); }
    };
    const std::unique_ptr<char, Free> real(realpath(name.c_str(), nullptr));
    return real ? std::string(real.get()) : name;
}

std::string DirectoryOf(const std::string& name) {
    const std::size_t slash = name.rfind('/');
    return slash == std::string::npos ? "." : name.substr(0, std::max<std::size_t>(slash, 1));
}

} // namespace platform
