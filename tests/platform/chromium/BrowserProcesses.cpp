#include "platform/chromium/BrowserProcesses.h"

#include <chrono>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <set>
#include <sstream>
#include <stdexcept>
#include <thread>

#include "support/Processes.h"

namespace platform_test {
namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;
using test_support::AllProcesses;
using test_support::Process;

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
        for (const Process& process : AllProcesses())
            if (process.HasInCommandLine("--user-data-dir=" + profile) &&
                !process.HasInCommandLine("/bin/sh") && process.group == process.id)
                m_browser = process.id;
        if (m_browser > 0) return;
        std::this_thread::sleep_for(10ms);
    }
    throw std::runtime_error("no browser is running");
}

std::vector<pid_t> BrowserProcesses::All() const {
    std::vector<pid_t> found;
    for (const Process& process : AllProcesses())
        if (process.IsRunning() &&
            (process.group == m_browser || process.HasInCommandLine(m_profile)))
            found.push_back(process.id);
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
        std::filesystem::directory_iterator entry(folder, error);
        for (; entry != std::filesystem::directory_iterator(); entry.increment(error))
            if (listening.count(std::filesystem::read_symlink(entry->path(), error).string()))
                return true;
    }
    return false;
}

} // namespace platform_test
