#include "support/Leftovers.h"

#include <chrono>
#include <filesystem>
#include <fstream>
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

} // namespace test_support
