#include "zrhttp/ProgramOutput.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdint>

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

namespace zrhttp {
namespace {

using Clock = std::chrono::steady_clock;

constexpr std::size_t kLongestOutput = 4096;

pid_t StartVersion(const std::string& file, int output) {
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    posix_spawn_file_actions_adddup2(&actions, output, STDOUT_FILENO);
    posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
    posix_spawnattr_t attributes;
    posix_spawnattr_init(&attributes);
    posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETPGROUP);
    std::string name = file;
    std::string option = "--version";
    char* const arguments[] = {name.data(), option.data(), nullptr};
    pid_t process = -1;
    const int failure =
        posix_spawn(&process, file.c_str(), &actions, &attributes, arguments, environ);
    posix_spawnattr_destroy(&attributes);
    posix_spawn_file_actions_destroy(&actions);
    return failure == 0 ? process : -1;
}

int MillisecondsUntil(Clock::time_point end) {
    const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(end - Clock::now());
    return static_cast<int>(std::max<std::int64_t>(left.count(), 0));
}

// Until its end; false when that does not come in time.
bool ReadUntil(Clock::time_point end, int output, std::string& text) {
    while (text.size() < kLongestOutput) {
        pollfd ready{output, POLLIN, 0};
        const int count = poll(&ready, 1, MillisecondsUntil(end));
        if (count < 0 && errno == EINTR) continue;
        if (count <= 0) return false;
        char block[512];
        const ssize_t size = read(output, block, sizeof block);
        if (size < 0 && errno == EINTR) continue;
        if (size <= 0) return size == 0;
        text.append(block, static_cast<std::size_t>(size));
    }
    return false;
}

// Whether it ends well and in time; it has ended in any case.
bool AwaitSuccess(Clock::time_point end, pid_t process) {
    const int watch = static_cast<int>(syscall(SYS_pidfd_open, process, 0));
    pollfd ended{watch, POLLIN, 0};
    if (poll(&ended, 1, MillisecondsUntil(end)) != 1) kill(-process, SIGKILL);
    if (watch >= 0) close(watch);
    int status = -1;
    while (waitpid(process, &status, 0) < 0 && errno == EINTR) {
    }
    return WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

} // namespace

std::optional<std::string> VersionOfProgram(const std::string& file,
                                            std::chrono::milliseconds patience) {
    int ends[2];
    if (pipe2(ends, O_CLOEXEC) != 0) return std::nullopt;
    const auto end = Clock::now() + patience;
    const pid_t process = StartVersion(file, ends[1]);
    close(ends[1]);
    std::string text;
    const bool isRead = process > 0 && ReadUntil(end, ends[0], text);
    close(ends[0]);
    if (process <= 0) return std::nullopt;
    if (!AwaitSuccess(isRead ? end : Clock::now(), process) || !isRead) return std::nullopt;
    return text.substr(0, text.find('\n'));
}

} // namespace zrhttp
