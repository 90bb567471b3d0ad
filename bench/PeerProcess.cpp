#include "PeerProcess.h"

#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <stdexcept>

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/wait.h>
#include <time.h>
#include <unistd.h>

extern char** environ;

namespace {

constexpr int kAnswerPatienceMs = 60'000;
constexpr int kEndPatienceMs = 10'000;

std::string Script() {
    return std::string(BENCH_PEERS) + "/peer.js";
}

} // namespace

bool PeerProcess::IsAvailable() {
    return std::filesystem::exists(std::string(BENCH_PEERS) + "/node_modules") &&
           std::system("node --version >/dev/null 2>&1") == 0;
}

PeerProcess::PeerProcess(const std::string& driver, const std::string& chromium)
    : m_driver(driver) {
    int commands[2];
    int answers[2];
    if (::pipe2(commands, O_CLOEXEC) != 0 || ::pipe2(answers, O_CLOEXEC) != 0)
        throw std::runtime_error("no pipe");
    m_commands = commands[1];
    m_answers = answers[0];
    posix_spawn_file_actions_t actions;
    ::posix_spawn_file_actions_init(&actions);
    ::posix_spawn_file_actions_adddup2(&actions, commands[0], STDIN_FILENO);
    ::posix_spawn_file_actions_adddup2(&actions, answers[1], STDOUT_FILENO);
    const std::string script = Script();
    const char* arguments[] = {"node", script.c_str(), driver.c_str(), chromium.c_str(), nullptr};
    const int failure = ::posix_spawnp(&m_process, "node", &actions, nullptr,
                                       const_cast<char* const*>(arguments), environ);
    ::posix_spawn_file_actions_destroy(&actions);
    ::close(commands[0]);
    ::close(answers[1]);
    if (failure != 0) throw std::runtime_error("node cannot be started");
}

PeerProcess::~PeerProcess() {
    ::close(m_commands);
    if (!HasEnded(kEndPatienceMs)) {
        ::kill(m_process, SIGKILL);
        ::waitpid(m_process, nullptr, 0);
    }
    ::close(m_answers);
}

void PeerProcess::StartBrowser() {
    Ask("start");
}

PeerAnswer PeerProcess::Measure(const std::string& command) {
    const std::string answer = Ask(command);
    std::size_t end = 0;
    const double milliseconds = std::stod(answer, &end);
    return {milliseconds, std::stoul(answer.substr(end))};
}

std::string PeerProcess::Ask(const std::string& command) {
    const std::string line = command + "\n";
    if (::write(m_commands, line.data(), line.size()) != static_cast<ssize_t>(line.size()))
        throw std::runtime_error(m_driver + " has gone away");
    const std::string answer = ReadLine();
    if (answer.starts_with("error")) throw std::runtime_error(m_driver + ": " + answer);
    return answer;
}

std::string PeerProcess::ReadLine() {
    for (;;) {
        if (const auto end = m_received.find('\n'); end != std::string::npos) {
            const std::string line = m_received.substr(0, end);
            m_received.erase(0, end + 1);
            return line;
        }
        pollfd ready{m_answers, POLLIN, 0};
        char block[512];
        const ssize_t size =
            ::poll(&ready, 1, kAnswerPatienceMs) == 1 ? ::read(m_answers, block, sizeof block) : 0;
        if (size <= 0) throw std::runtime_error(m_driver + " does not answer");
        m_received.append(block, static_cast<std::size_t>(size));
    }
}

bool PeerProcess::HasEnded(int patienceMs) const {
    for (int waited = 0; waited < patienceMs; waited += 20) {
        if (::waitpid(m_process, nullptr, WNOHANG) != 0) return true;
        const timespec pause{0, 20'000'000};
        ::nanosleep(&pause, nullptr);
    }
    return false;
}
