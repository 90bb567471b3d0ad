#include "support/RunTool.h"

#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <stdexcept>
#include <system_error>
#include <thread>

#include <fcntl.h>
#include <poll.h>
#include <pty.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>

#include "browser/chromium/SpawnProgram.h"

namespace test_support {
namespace {

using namespace std::chrono_literals;

constexpr auto kLongestRun = 30s;

int Checked(int result, const char* what) {
    if (result < 0) throw std::system_error(errno, std::generic_category(), what);
    return result;
}

// A file in memory; it can be written without anybody reading at the same time.
int MemoryFile(std::string_view content = "") {
    const int file = Checked(memfd_create("zrhttp-test", MFD_CLOEXEC), "memfd_create");
    while (!content.empty()) {
        const ssize_t count = write(file, content.data(), content.size());
        if (count < 0) Checked(-1, "write");
        content.remove_prefix(static_cast<std::size_t>(count));
    }
    Checked(static_cast<int>(lseek(file, 0, SEEK_SET)), "lseek");
    return file;
}

// Until the end of the file or, of a terminal, until its last user has closed it.
std::string ReadAll(int file) {
    std::string text;
    char block[4096];
    for (;;) {
        const ssize_t count = read(file, block, sizeof block);
        if (count < 0 && errno == EINTR) continue;
        if (count <= 0) return text;
        text.append(block, static_cast<std::size_t>(count));
    }
}

std::vector<std::string> Environment() {
    std::vector<std::string> environment{"no_proxy=127.0.0.1,localhost", "ZRHTTP=" ZRHTTP_TOOL};
    for (char** variable = environ; *variable; ++variable)
        environment.emplace_back(*variable);
    return environment;
}

// As exec wants them, for as long as the texts live.
std::vector<char*> Pointers(std::vector<std::string>& texts) {
    std::vector<char*> pointers;
    for (std::string& text : texts)
        pointers.push_back(text.data());
    pointers.push_back(nullptr);
    return pointers;
}

pid_t Start(const std::vector<std::string>& arguments, int input, int output, int error) {
    platform::ProgramStart start;
    start.command = {ZRHTTP_TOOL};
    start.command.insert(start.command.end(), arguments.begin(), arguments.end());
    start.descriptors = {{input, 0}, {output, 1}, {error, 2}};
    start.environment = Environment();
    const auto process = platform::StartProgram(start);
    return Checked(process.value_or(-1), ZRHTTP_TOOL);
}

int ExitStatus(int waitStatus) {
    return WIFEXITED(waitStatus) ? WEXITSTATUS(waitStatus) : 128 + WTERMSIG(waitStatus);
}

int WaitFor(pid_t process) {
    const auto deadline = std::chrono::steady_clock::now() + kLongestRun;
    int status = 0;
    while (Checked(waitpid(process, &status, WNOHANG), "waitpid") == 0) {
        if (std::chrono::steady_clock::now() > deadline) kill(process, SIGKILL);
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
    return ExitStatus(status);
}

} // namespace

ToolProcess::ToolProcess(const std::vector<std::string>& arguments, std::string_view input)
    : m_input(MemoryFile(input)), m_output(MemoryFile()), m_error(MemoryFile()) {
    m_process = Start(arguments, m_input, m_output, m_error);
}

ToolProcess::~ToolProcess() {
    if (m_process > 0) {
        kill(m_process, SIGKILL);
        waitpid(m_process, nullptr, 0);
    }
    close(m_input);
    close(m_output);
    close(m_error);
}

void ToolProcess::Signal(int signalNumber) const {
    kill(m_process, signalNumber);
}

ToolRun ToolProcess::Wait() {
    ToolRun run;
    run.exitStatus = WaitFor(m_process);
    m_process = -1;
    lseek(m_output, 0, SEEK_SET);
    lseek(m_error, 0, SEEK_SET);
    run.output = ReadAll(m_output);
    run.error = ReadAll(m_error);
    return run;
}

ToolRun RunTool(const std::vector<std::string>& arguments, std::string_view input) {
    return ToolProcess(arguments, input).Wait();
}

ToolOnTerminal::ToolOnTerminal(const std::vector<std::string>& arguments,
                               const std::string& program) {
    std::vector<std::string> command{program};
    command.insert(command.end(), arguments.begin(), arguments.end());
    std::vector<std::string> environment = Environment();
    const auto argv = Pointers(command);
    const auto envp = Pointers(environment);
    m_process = Checked(forkpty(&m_terminal, nullptr, nullptr, nullptr), "forkpty");
    if (m_process == 0) {
        signal(SIGINT, SIG_DFL); // ignored where the tests run in the background
        signal(SIGQUIT, SIG_DFL);
        execve(program.c_str(), argv.data(), envp.data());
        _exit(127);
    }
    fcntl(m_terminal, F_SETFD, FD_CLOEXEC);
}

ToolOnTerminal::~ToolOnTerminal() {
    if (m_process > 0) {
        kill(m_process, SIGKILL);
        waitpid(m_process, nullptr, 0);
    }
    close(m_terminal);
}

void ToolOnTerminal::TypeAfter(std::string_view text, std::string_view keys) {
    while (m_shown.find(text) == std::string::npos) {
        pollfd terminal{m_terminal, POLLIN, 0};
        char block[4096];
        const bool isNews = poll(&terminal, 1, kLongestRun / 1ms) > 0;
        const ssize_t count = isNews ? read(m_terminal, block, sizeof block) : 0;
        if (count <= 0) throw std::runtime_error("the tool never showed: " + std::string(text));
        m_shown.append(block, static_cast<std::size_t>(count));
    }
    Checked(static_cast<int>(write(m_terminal, keys.data(), keys.size())), "type");
}

bool ToolOnTerminal::IsEchoing() const {
    termios settings{};
    Checked(tcgetattr(m_terminal, &settings), "tcgetattr");
    return (settings.c_lflag & ECHO) != 0;
}

ToolRun ToolOnTerminal::Wait() {
    ToolRun run;
    run.output = m_shown + ReadAll(m_terminal);
    run.exitStatus = WaitFor(m_process);
    m_process = -1;
    return run;
}

ToolRun RunToolOnTerminal(const std::vector<std::string>& arguments) {
    return ToolOnTerminal(arguments).Wait();
}

} // namespace test_support
