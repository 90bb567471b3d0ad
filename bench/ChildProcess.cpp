#include "ChildProcess.h"

#include <chrono>
#include <cstdlib>
#include <stdexcept>

#include <fcntl.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

extern char** environ;

namespace {

class FileActions {
public:
    FileActions() { posix_spawn_file_actions_init(&m_actions); }
    ~FileActions() { posix_spawn_file_actions_destroy(&m_actions); }
    FileActions(const FileActions&) = delete;
    FileActions& operator=(const FileActions&) = delete;

    void Open(int descriptor, const std::string& file, int flags) {
        posix_spawn_file_actions_addopen(&m_actions, descriptor, file.c_str(), flags, 0);
    }
    void Use(int descriptor, int source) {
        posix_spawn_file_actions_adddup2(&m_actions, source, descriptor);
    }
    const posix_spawn_file_actions_t* Get() const { return &m_actions; }

private:
    posix_spawn_file_actions_t m_actions;
};

pid_t Start(const std::vector<std::string>& arguments, const FileActions& actions) {
    std::vector<char*> words;
    for (const std::string& argument : arguments)
        words.push_back(const_cast<char*>(argument.c_str()));
    words.push_back(nullptr);
    pid_t process = -1;
    if (::posix_spawnp(&process, words[0], actions.Get(), nullptr, words.data(), environ) != 0)
        throw std::runtime_error(arguments[0] + " cannot be started");
    return process;
}

rusage WaitFor(pid_t process, const std::string& name) {
    int status = 0;
    rusage use{};
    if (::wait4(process, &status, 0, &use) != process || !WIFEXITED(status) ||
        WEXITSTATUS(status) != 0)
        throw std::runtime_error(name + " has failed");
    return use;
}

double Milliseconds(const timeval& time) {
    return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_usec) * 1e-3;
}

} // namespace

bool IsInstalled(const std::string& program) {
    return std::system(("command -v " + program + " >/dev/null").c_str()) == 0;
}

void RunProgram(const std::vector<std::string>& arguments, const std::string& inputFile) {
    FileActions actions;
    actions.Open(STDIN_FILENO, inputFile.empty() ? "/dev/null" : inputFile, O_RDONLY);
    actions.Open(STDOUT_FILENO, "/dev/null", O_WRONLY);
    WaitFor(Start(arguments, actions), arguments[0]);
}

ProgramUse RunMeasured(const std::vector<std::string>& arguments) {
    FileActions actions;
    actions.Open(STDIN_FILENO, "/dev/null", O_RDONLY);
    const auto begin = std::chrono::steady_clock::now();
    const rusage use = WaitFor(Start(arguments, actions), arguments[0]);
    const std::chrono::duration<double, std::milli> wall = std::chrono::steady_clock::now() - begin;
    return {wall.count(), Milliseconds(use.ru_utime) + Milliseconds(use.ru_stime), use.ru_maxrss};
}

std::string OutputOf(const std::vector<std::string>& arguments) {
    int ends[2];
    if (::pipe2(ends, O_CLOEXEC) != 0) throw std::runtime_error("no pipe");
    FileActions actions;
    actions.Use(STDOUT_FILENO, ends[1]);
    const pid_t process = Start(arguments, actions);
    ::close(ends[1]);
    std::string output;
    char block[512];
    for (ssize_t size = 0; (size = ::read(ends[0], block, sizeof block)) > 0;)
        output.append(block, static_cast<std::size_t>(size));
    ::close(ends[0]);
    WaitFor(process, arguments[0]);
    return output;
}
