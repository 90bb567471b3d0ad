#include "browser/chromium/ProfileDirectory.h"

#include <cstdlib>
#include <filesystem>
#include <string>

#include <sys/statvfs.h>
#include <unistd.h>

namespace platform {
namespace {

constexpr unsigned long long kRoomBytes = 64ull * 1024 * 1024;

bool HasRoom(const char* pszDirectory) {
    struct statvfs room {};
    return statvfs(pszDirectory, &room) == 0 && access(pszDirectory, W_OK | X_OK) == 0 &&
           static_cast<unsigned long long>(room.f_bavail) * room.f_frsize >= kRoomBytes;
}

std::string MakeBelow(const std::string& directory) {
    std::string name = directory + "/zrhttp-chromium-XXXXXX";
    return mkdtemp(name.data()) ? name : std::string();
}

} // namespace

std::string MakeProfileDirectory() {
    if (HasRoom("/dev/shm"))
        if (std::string name = MakeBelow("/dev/shm"); !name.empty()) return name;
    if (const char* runtime = std::getenv("XDG_RUNTIME_DIR"); runtime && HasRoom(runtime))
        if (std::string name = MakeBelow(runtime); !name.empty()) return name;
    std::error_code error;
    const auto temporary = std::filesystem::temp_directory_path(error);
    return error ? std::string() : MakeBelow(temporary);
}

} // namespace platform
