#include "browser/chromium/ProfileDirectory.h"

#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <thread>
#include <vector>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>

#include "browser/chromium/ProfileProcesses.h"

namespace platform {
namespace {

using namespace std::chrono_literals;

// Not that of earlier versions, which held no lock.
constexpr const char* kProfilePrefix = "zrhttp-profile-";
constexpr unsigned long long kRoomBytes = 64ull * 1024 * 1024;

bool HasRoom(const char* pszDirectory) {
    struct statvfs room {};
    return statvfs(pszDirectory, &room) == 0 && access(pszDirectory, W_OK | X_OK) == 0 &&
           static_cast<unsigned long long>(room.f_bavail) * room.f_frsize >= kRoomBytes;
}

// Where they are made, the best place first.
std::vector<std::string> ProfilePlaces() {
    std::vector<std::string> places{"/dev/shm"};
    if (const char* runtime = std::getenv("XDG_RUNTIME_DIR")) places.emplace_back(runtime);
    std::error_code error;
    const auto temporary = std::filesystem::temp_directory_path(error);
    if (!error) places.push_back(temporary);
    return places;
}

bool IsSameDirectory(int descriptor, const std::string& path) {
    struct stat open {};
    struct stat named {};
    return fstat(descriptor, &open) == 0 && lstat(path.c_str(), &named) == 0 &&
           open.st_dev == named.st_dev && open.st_ino == named.st_ino;
}

// Not open, with errno: EWOULDBLOCK when somebody else holds it, ENOENT when it has been removed.
OwnedDescriptor LockDirectory(const std::string& path) {
    OwnedDescriptor directory(open(path.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
    if (!directory.IsOpen() || flock(directory.Get(), LOCK_EX | LOCK_NB) != 0)
        return OwnedDescriptor(-1);
    if (IsSameDirectory(directory.Get(), path)) return directory;
    errno = ENOENT;
    return OwnedDescriptor(-1);
}

bool IsOwn(const std::string& path) {
    struct stat status {};
    return lstat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode) &&
           status.st_uid == geteuid() && (status.st_mode & 077u) == 0;
}

// Until it is locked, somebody may take the new directory for abandoned: then there is another.
std::optional<LockedProfile> MakeBelow(const std::string& place) {
    for (;;) {
        std::string path = place + "/" + kProfilePrefix + "XXXXXX";
        if (!mkdtemp(path.data())) return std::nullopt;
        OwnedDescriptor lock = LockDirectory(path);
        const int error = errno;
        if (lock.IsOpen() || error == EBADF || error == ENOLCK || error == EOPNOTSUPP)
            return LockedProfile{path, std::move(lock)};
        rmdir(path.c_str());
        errno = error;
        if (error != EWOULDBLOCK && error != ENOENT) return std::nullopt;
    }
}

} // namespace

std::optional<LockedProfile> MakeProfileDirectory() {
    const auto places = ProfilePlaces();
    for (std::size_t i = 0; i < places.size(); ++i)
        if (i + 1 == places.size() || HasRoom(places[i].c_str()))
            if (auto profile = MakeBelow(places[i])) return profile;
    return std::nullopt;
}

void RemoveIfAbandoned(const std::string& path) {
    if (!IsOwn(path)) return;
    const OwnedDescriptor lock = LockDirectory(path);
    if (!lock.IsOpen() || !EndProcessesOf(path)) return;
    std::error_code error;
    // What is being killed may make one more file.
    for (int attempt = 0; attempt < 10 && std::filesystem::exists(path, error); ++attempt) {
        if (attempt > 0) std::this_thread::sleep_for(20ms);
        std::filesystem::remove_all(path, error);
    }
}

void RemoveAbandonedProfiles() {
    for (const std::string& place : ProfilePlaces()) {
        std::error_code error;
        std::filesystem::directory_iterator entry(place, error);
        for (; entry != std::filesystem::directory_iterator(); entry.increment(error))
            if (entry->path().filename().native().starts_with(kProfilePrefix))
                RemoveIfAbandoned(entry->path());
    }
}

} // namespace platform
