#include "support/Leftovers.h"

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <iterator>
#include <thread>

#include <sys/prctl.h>
#include <unistd.h>

#include "support/Processes.h"

namespace test_support {
namespace {

std::vector<std::string> LookOnce() {
    std::vector<std::string> running;
    for (const Process& process : AllProcesses())
        if (process.parent == ::getpid() && process.IsRunning())
            running.push_back(std::to_string(process.id) + " (" + process.name + ")");
    return running;
}

std::set<std::string> AllProfileDirectories() {
    std::set<std::string> found;
    const char* const runtime = std::getenv("XDG_RUNTIME_DIR");
    for (const std::filesystem::path& place :
         {std::filesystem::path("/dev/shm"), std::filesystem::path(runtime ? runtime : ""),
          std::filesystem::temp_directory_path()}) {
        std::error_code error;
        for (const auto& entry : std::filesystem::directory_iterator(place, error))
            if (entry.path().filename().string().starts_with("zrhttp-profile-"))
                found.insert(entry.path());
    }
    return found;
}

} // namespace

void AdoptOrphans() {
    ::prctl(PR_SET_CHILD_SUBREAPER, 1, 0, 0, 0);
}

std::vector<std::string> RunningChildren() {
    std::vector<std::string> running = LookOnce();
    for (int look = 1; look < 20 && !running.empty(); ++look) {
        std::this_thread::sleep_for(std::chrono::milliseconds(100));
        running = LookOnce();
    }
    return running;
}

ProfileDirectories::ProfileDirectories() : m_before(AllProfileDirectories()) {}

std::vector<std::string> ProfileDirectories::LeftBehind() const {
    std::vector<std::string> left = AbandonedNow();
    for (int look = 1; look < 50 && !left.empty(); ++look) {
        std::this_thread::sleep_for(std::chrono::milliseconds(100));
        left = AbandonedNow();
    }
    return left;
}

std::vector<std::string> ProfileDirectories::AbandonedNow() const {
    std::vector<std::string> left;
    const std::set<std::string> now = AllProfileDirectories();
    std::set_difference(now.begin(), now.end(), m_before.begin(), m_before.end(),
                        std::back_inserter(left));
    if (left.empty()) return left;
    const auto processes = AllProcesses();
    std::erase_if(left, [&](const std::string& directory) {
        return std::ranges::any_of(
            processes, [&](const Process& one) { return one.HasInCommandLine(directory); });
    });
    return left;
}

} // namespace test_support
