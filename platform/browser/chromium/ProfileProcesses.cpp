#include "browser/chromium/ProfileProcesses.h"

#include <csignal>
#include <filesystem>
#include <fstream>
#include <optional>
#include <set>
#include <sstream>
#include <string_view>

#include <sys/types.h>

namespace platform {
namespace {

// Empty when the process ends meanwhile.
std::string ReadProcessFile(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    std::ostringstream text;
    text << file.rdbuf();
    return text.str();
}

struct ProcessState {
    char state = 'X';
    pid_t group = 0;
    pid_t session = 0;

    bool IsStopped() const { return state == 'T' || state == 't'; }
    // All of an application are in the one group of a session. Whoever else has the directory in
    // a command line has come from a terminal or a script.
    bool IsOfApplication() const { return state != 'Z' && state != 'X' && group == session; }
};

ProcessState StateOf(const std::filesystem::path& process) {
    const std::string text = ReadProcessFile(process / "stat"); // 42 (any name) S 1 42 42 ...
    const std::size_t end = text.rfind(')');
    ProcessState found;
    pid_t parent = 0;
    if (end != std::string::npos)
        std::istringstream(text.substr(end + 1)) >> found.state >> parent >> found.group >>
            found.session;
    return found;
}

} // namespace

bool EndProcessesOf(const std::string& profile) {
    // What works on the directory has it as an argument.
    const std::string argument = std::string(1, '\0') + profile + '\0';
    const std::string option = "=" + profile; // of the browser and of each of its helpers
    std::set<pid_t> groups;
    std::error_code error;
    std::filesystem::directory_iterator process("/proc", error);
    // Without a descriptor to spare nothing could be seen.
    if (error || ReadProcessFile("/proc/self/stat").empty()) return false;
    for (; process != std::filesystem::directory_iterator(); process.increment(error)) {
        if (process->path().filename().native().find_first_not_of("0123456789") !=
            std::string::npos)
            continue;
        const std::string command = ReadProcessFile(process->path() / "cmdline");
        const bool isSupervisor = command.find(argument) != std::string::npos;
        if (!isSupervisor && command.find(option) == std::string::npos) continue;
        const ProcessState state = StateOf(process->path());
        if (!state.IsOfApplication()) continue;
        if (isSupervisor && !state.IsStopped()) return false;
        groups.insert(state.group);
    }
    for (const pid_t group : groups)
        kill(-group, SIGKILL);
    return true;
}

} // namespace platform
