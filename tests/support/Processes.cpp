#include "support/Processes.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>

namespace test_support {
namespace {

// Empty when the process ends meanwhile.
std::string ContentOf(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    std::ostringstream text;
    text << file.rdbuf(); // which does not throw
    return text.str();
}

} // namespace

std::vector<Process> AllProcesses() {
    std::vector<Process> all;
    std::error_code error;
    for (const auto& entry : std::filesystem::directory_iterator("/proc", error)) {
        Process process;
        process.id = std::atoi(entry.path().filename().c_str());
        if (process.id <= 0) continue;
        const std::string status = ContentOf(entry.path() / "stat"); // 42 (name) S 1 42 ...
        const std::size_t begin = status.find('(');
        const std::size_t end = status.rfind(") ");
        if (end == std::string::npos) continue;
        process.name = status.substr(begin + 1, end - begin - 1);
        std::istringstream(status.substr(end + 2)) >> process.state >> process.parent >>
            process.group;
        process.commandLine = ContentOf(entry.path() / "cmdline");
        all.push_back(std::move(process));
    }
    return all;
}

} // namespace test_support
