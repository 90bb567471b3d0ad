#include "support/RunTool.h"

#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <stdexcept>
#include <system_error>
#include <thread>

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include "browser/chromium/SpawnProgram.h"

namespace test_support {
namespace {

constexpr auto kLongestRun = std::chrono::seconds(30);

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

pid_t Start(const std::vector<std::string>& arguments, int input, int output, int error) {
    platform::ProgramStart start;
    start.command = {ZRHTTP_TOOL};
    start.command.insert(start.command.end(), arguments.begin(), arguments.end());
    start.descriptors = {{input, 0}, {output, 1}, {error, 2}};
    start.environment = {"no_proxy=127.0.0.1,localhost"};
    for (char** variable = environ; *variable; ++variable)
        start.environment.emplace_back(*variable);
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

ToolRun RunToolOnTerminal(const std::vector<std::string>& arguments) {
    const int master = Checked(posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC), "posix_openpt");
    Checked(grantpt(master), "grantpt");
    Checked(unlockpt(master), "unlockpt");
    const int terminal =
        Checked(open(ptsname(master), O_RDWR | O_NOCTTY | O_CLOEXEC), "open terminal");
    const int input = MemoryFile();
    const pid_t process = Start(arguments, input, terminal, terminal);
    close(terminal);
    close(input);
    ToolRun run;
    run.output = ReadAll(master);
    close(master);
    run.exitStatus = WaitFor(process);
    return run;
}

} // namespace test_support
