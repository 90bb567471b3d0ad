#include "support/HttpBin.h"

#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <utility>

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

namespace test_support {
namespace {

// The distribution's own interpreter: the one that PATH names may not know the packages.
constexpr const char* kPython = "/usr/bin/python3";

constexpr const char* kScript = R"(
import os, sys, threading
from httpbin import app
from werkzeug.serving import make_server

def end_with_parent():
    sys.stdin.read()
    os._exit(0)

app.request_class.charset = "iso-8859-1"
server = make_server("127.0.0.1", 0, app, threaded=True)
threading.Thread(target=end_with_parent, daemon=True).start()
print(server.port, flush=True)
server.serve_forever()
)";

struct Pipe {
    Pipe() {
        if (::pipe2(ends, O_CLOEXEC) != 0) throw std::runtime_error("no pipe");
    }
    ~Pipe() {
        for (const int end : ends)
            if (end >= 0) ::close(end);
    }
    Pipe(const Pipe&) = delete;
    Pipe& operator=(const Pipe&) = delete;
    int ReleaseWriter() { return std::exchange(ends[1], -1); }
    void CloseWriter() { ::close(ReleaseWriter()); }

    int ends[2] = {-1, -1};
};

// Until the line's or the stream's end.
std::string ReadLine(int descriptor) {
    std::string line;
    for (char c = 0; ::read(descriptor, &c, 1) == 1 && c != '\n';)
        line += c;
    return line;
}

} // namespace

HttpBin::HttpBin() {
    std::string pattern = std::filesystem::temp_directory_path() / "zrhttp-httpbin-XXXXXX";
    if (!::mkdtemp(pattern.data())) throw std::runtime_error("no temporary directory");
    m_directory = pattern;
    Pipe life;
    Pipe answer;
    Start(life.ends[0], answer.ends[1]);
    m_life = life.ReleaseWriter();
    answer.CloseWriter();
    const std::string port = ReadLine(answer.ends[0]);
    if (port.empty()) {
        const std::string words = Words();
        End();
        throw std::runtime_error("httpbin does not start; scripts/setup installs it\n" + words);
    }
    m_origin = "http://127.0.0.1:" + port;
}

HttpBin::~HttpBin() {
    End();
}

void HttpBin::Start(int input, int output) {
    const std::string log = m_directory + "/log";
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, input, STDIN_FILENO);
    posix_spawn_file_actions_adddup2(&actions, output, STDOUT_FILENO);
    posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, log.c_str(), O_WRONLY | O_CREAT,
                                     0600);
    // Large requests are kept in temporary files. Nothing else of our surroundings matters to it.
    std::string temporary = "TMPDIR=" + m_directory;
    char* const environment[] = {temporary.data(), nullptr};
    // -I: without the user's own packages and the working directory; -B: without writing bytecode.
    const char* const arguments[] = {kPython, "-I", "-B", "-c", kScript, nullptr};
    if (::posix_spawn(&m_process, kPython, &actions, nullptr, const_cast<char* const*>(arguments),
                      environment) != 0)
        m_process = -1; // nobody prints a port
    posix_spawn_file_actions_destroy(&actions);
}

void HttpBin::End() {
    if (m_process > 0) {
        ::kill(m_process, SIGKILL);
        ::waitpid(m_process, nullptr, 0);
    }
    if (m_life >= 0) ::close(m_life);
    std::error_code ignored;
    std::filesystem::remove_all(m_directory, ignored);
}

std::string HttpBin::Words() const {
    std::ifstream log(m_directory + "/log");
    return {std::istreambuf_iterator<char>(log), {}};
}

} // namespace test_support
