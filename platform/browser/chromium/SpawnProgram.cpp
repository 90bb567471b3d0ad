#include "browser/chromium/SpawnProgram.h"

#include <algorithm>
#include <cerrno>
#include <csignal>

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include "system/OwnedDescriptor.h"

namespace platform {
namespace {

// Above every number that a program is given, so that none is overwritten before its turn.
constexpr int kOutOfTheWay = 16;

std::vector<char*> Pointers(const std::vector<std::string>& texts) {
    std::vector<char*> pointers;
    for (const std::string& text : texts)
        pointers.push_back(const_cast<char*>(text.c_str()));
    pointers.push_back(nullptr);
    return pointers;
}

class Actions {
public:
    Actions() { posix_spawn_file_actions_init(&m_actions); }
    ~Actions() { posix_spawn_file_actions_destroy(&m_actions); }
    Actions(const Actions&) = delete;
    Actions& operator=(const Actions&) = delete;

    void Give(int own, int number) {
        m_copies.emplace_back(fcntl(own, F_DUPFD_CLOEXEC, kOutOfTheWay));
        if (!m_copies.back().IsOpen()) m_error = errno;
        posix_spawn_file_actions_adddup2(&m_actions, m_copies.back().Get(), number);
        m_last = std::max(m_last, number);
    }
    void GiveNull(int number) {
        posix_spawn_file_actions_addopen(&m_actions, number, "/dev/null", O_RDWR, 0);
    }
    int Error() const { return m_error; }
    posix_spawn_file_actions_t* Close() {
        posix_spawn_file_actions_addclosefrom_np(&m_actions, m_last + 1);
        return &m_actions;
    }

private:
    posix_spawn_file_actions_t m_actions;
    std::vector<OwnedDescriptor> m_copies;
    int m_last = 2;
    int m_error = 0;
};

class Attributes {
public:
    Attributes() {
        posix_spawnattr_init(&m_attributes);
        sigset_t all;
        sigset_t none;
        sigfillset(&all);
        sigemptyset(&none);
        posix_spawnattr_setsigdefault(&m_attributes, &all);
        posix_spawnattr_setsigmask(&m_attributes, &none);
        posix_spawnattr_setflags(&m_attributes, POSIX_SPAWN_SETSID | POSIX_SPAWN_SETSIGDEF |
                                                    POSIX_SPAWN_SETSIGMASK);
    }
    ~Attributes() { posix_spawnattr_destroy(&m_attributes); }
    Attributes(const Attributes&) = delete;
    Attributes& operator=(const Attributes&) = delete;
    const posix_spawnattr_t* Get() const { return &m_attributes; }

private:
    posix_spawnattr_t m_attributes;
};

bool IsGiven(const ProgramStart& start, int number) {
    return std::any_of(start.descriptors.begin(), start.descriptors.end(),
                       [&](const auto& entry) { return entry.second == number; });
}

} // namespace

std::optional<pid_t> StartProgram(const ProgramStart& start) {
    Actions actions;
    for (int number = 0; number <= 2; ++number)
        if (!IsGiven(start, number)) actions.GiveNull(number);
    for (const auto& [own, number] : start.descriptors)
        actions.Give(own, number);
    if (actions.Error() != 0) {
        errno = actions.Error();
        return std::nullopt;
    }
    const Attributes attributes;
    const auto arguments = Pointers(start.command);
    const auto environment = Pointers(start.environment);
    pid_t program = 0;
    const int error =
        posix_spawnp(&program, arguments[0], actions.Close(), attributes.Get(), arguments.data(),
                     start.environment.empty() ? environ : environment.data());
    errno = error;
    return error == 0 ? std::optional(program) : std::nullopt;
}

bool WaitForProgram(pid_t program) {
    int status = 0;
    while (waitpid(program, &status, 0) < 0)
        if (errno != EINTR) return errno == ECHILD; // the host program ignores its children's ends
    return WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

bool RunProgram(std::vector<std::string> command) {
    const auto program = StartProgram({std::move(command), {}, {}});
    return program && WaitForProgram(*program);
}

} // namespace platform
