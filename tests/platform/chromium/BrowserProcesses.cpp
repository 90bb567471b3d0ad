#include "platform/chromium/BrowserProcesses.h"

#include <chrono>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <set>
#include <sstream>
#include <stdexcept>
#include <thread>

namespace platform_test {
namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

// Empty also for a process that has ended and waits to be collected.
std::string CommandLineOf(pid_t process) {
    std::ifstream file("/proc/" + std::to_string(process) + "/cmdline", std::ios::binary);
    std::ostringstream text;
    text << file.rdbuf(); // which does not throw when the process ends meanwhile
    return text.str();
}

struct State {
    char state = 'X';
    pid_t group = -1;
};

State StateOf(pid_t process) {
    std::ifstream file("/proc/" + std::to_string(process) + "/stat");
    std::string line;
    std::getline(file, line);
    State state;
    pid_t parent = 0;
    std::istringstream rest(line.substr(std::min(line.rfind(')') + 1, line.size())));
    rest >> state.state >> parent >> state.group;
    return state;
}

bool IsRunning(const State& state) {
    return state.state != 'Z' && state.state != 'X';
}

std::vector<pid_t> AllProcesses() {
    std::vector<pid_t> processes;
    std::error_code error;
    for (const auto& entry : std::filesystem::directory_iterator("/proc", error))
        if (const pid_t process = std::atoi(entry.path().filename().c_str()); process > 0)
            processes.push_back(process);
    return processes;
}

// As /proc/PID/fd shows them: "socket:[inode]".
std::set<std::string> ListeningSockets() {
    std::set<std::string> sockets;
    for (const char* name : {"/proc/net/tcp", "/proc/net/tcp6"}) {
        std::ifstream file(name);
        std::string line;
        std::getline(file, line);
        while (std::getline(file, line)) {
            std::istringstream words(line);
            const std::vector<std::string> fields{std::istream_iterator<std::string>(words), {}};
            if (fields.size() > 9 && fields[3] == "0A")
                sockets.insert("socket:[" + fields[9] + "]");
        }
    }
    return sockets;
}

} // namespace

BrowserProcesses::BrowserProcesses(const std::string& profile) : m_profile(profile) {
    for (const auto end = Clock::now() + 20s; Clock::now() < end;) {
        // The supervisor has the directory in its command line, too, but leads no group.
        for (const pid_t process : AllProcesses())
            if (CommandLineOf(process).find("--user-data-dir=" + profile) != std::string::npos &&
                CommandLineOf(process).find("/bin/sh") == std::string::npos &&
                StateOf(process).group == process)
                m_browser = process;
        if (m_browser > 0) return;
        std::this_thread::sleep_for(10ms);
    }
    throw std::runtime_error("no browser is running");
}

std::vector<pid_t> BrowserProcesses::All() const {
    std::vector<pid_t> found;
    for (const pid_t process : AllProcesses()) {
        const State state = StateOf(process);
        if (IsRunning(state) && (state.group == m_browser ||
                                 CommandLineOf(process).find(m_profile) != std::string::npos))
            found.push_back(process);
    }
    return found;
}

bool BrowserProcesses::AreGoneWithin(double seconds) const {
    const auto end = Clock::now() + std::chrono::duration<double>(seconds);
    while (IsAnythingLeft()) {
        if (Clock::now() > end) return false;
        std::this_thread::sleep_for(10ms);
    }
    return true;
}

bool BrowserProcesses::IsAnythingLeft() const {
    return std::filesystem::exists(m_profile) || !All().empty();
}

bool BrowserProcesses::HasListeningSocket() const {
    const auto listening = ListeningSockets();
    for (const pid_t process : All()) {
        std::error_code error;
        const std::string folder = "/proc/" + std::to_string(process) + "/fd";
        for (const auto& entry : std::filesystem::directory_iterator(folder, error))
            if (listening.count(std::filesystem::read_symlink(entry.path(), error).string()))
                return true;
    }
    return false;
}

} // namespace platform_test
