#include "support/Leftovers.h"

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>
#include <thread>

#include <sys/prctl.h>

namespace test_support {
namespace {

// "PID (name)", or empty when the process has ended (also when nobody has collected it yet).
std::string Describe(const std::string& pid) {
    std::ifstream file("/proc/" + pid + "/stat");
    std::string line;
    std::getline(file, line);
    const std::size_t nameEnd = line.rfind(") ");
    if (nameEnd == std::string::npos || line.find_first_of("ZX", nameEnd) == nameEnd + 2) return {};
    return line.substr(0, nameEnd + 1);
}

std::vector<std::string> LookOnce() {
    std::vector<std::string> running;
    std::error_code error;
    for (const auto& task : std::filesystem::directory_iterator("/proc/self/task", error)) {
        std::ifstream children(task.path() / "children");
        for (std::string pid; children >> pid;)
            if (std::string process = Describe(pid); !process.empty())
                running.push_back(std::move(process));
    }
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
            if (entry.path().filename().string().starts_with("zrhttp-chromium-"))
                found.insert(entry.path());
    }
    return found;
}

std::string AllCommandLines() {
    std::ostringstream all;
    std::error_code error;
    for (const auto& process : std::filesystem::directory_iterator("/proc", error)) {
        std::ifstream file(process.path() / "cmdline", std::ios::binary);
        all << file.rdbuf(); // which does not throw when the process ends meanwhile
        all.clear();         // nothing came
    }
    return all.str();
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
    const std::string commandLines = AllCommandLines();
    std::erase_if(left, [&](const std::string& directory) {
        return commandLines.find(directory) != std::string::npos;
    });
    return left;
}

} // namespace test_support
