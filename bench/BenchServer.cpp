#include "BenchServer.h"

#include <chrono>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <thread>

#include <arpa/inet.h>
#include <spawn.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

extern char** environ;

namespace {

sockaddr_in Loopback(unsigned short port) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(port);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    return address;
}

// A port that the system has just given out and nobody uses.
unsigned short FreePort() {
    const int socket = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in address = Loopback(0);
    socklen_t size = sizeof(address);
    const bool isBound = ::bind(socket, reinterpret_cast<sockaddr*>(&address), size) == 0 &&
                         ::getsockname(socket, reinterpret_cast<sockaddr*>(&address), &size) == 0;
    ::close(socket);
    if (!isBound) throw std::runtime_error("no free loopback port");
    return ntohs(address.sin_port);
}

bool IsListening(unsigned short port) {
    const int socket = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    const sockaddr_in address = Loopback(port);
    const bool isListening =
        ::connect(socket, reinterpret_cast<const sockaddr*>(&address), sizeof(address)) == 0;
    ::close(socket);
    return isListening;
}

// `server`: the lines of the server block.
std::string Configuration(const std::string& directory, const std::string& server) {
    const std::string paths[] = {"client_body", "proxy", "fastcgi", "uwsgi", "scgi"};
    std::string temporary;
    for (const std::string& path : paths)
        temporary += path + "_temp_path " + directory + "/" + path + ";\n";
    return "daemon off; worker_processes 1; error_log stderr crit;\n"
           "pid " +
           directory +
           "/nginx.pid;\n"
           "events {}\n"
           "http {\n" +
           temporary +
           "access_log off; default_type text/html; keepalive_requests 1000000;\n"
           "server {\n" +
           server + "root " + directory + "/www;\n}\n}\n";
}

std::string ListenLine(unsigned short port, const char* options) {
    return "listen 127.0.0.1:" + std::to_string(port) + options + ";\n";
}

std::string CertificateLines(const std::string& file) {
    return "ssl_certificate " + file + ";\nssl_certificate_key " + file + ";\n";
}

} // namespace

BenchServer::BenchServer(const Setup& setup) {
    std::string pattern = (std::filesystem::temp_directory_path() / "zrhttp_bench_XXXXXX").string();
    if (!::mkdtemp(pattern.data())) throw std::runtime_error("no temporary directory");
    m_directory = pattern;
    // The worker of a server started by root runs as another user.
    std::filesystem::permissions(m_directory, std::filesystem::perms(0755));
    std::filesystem::create_directory(m_directory + "/www");
    WriteFile("www/page", setup.page);
    const unsigned short port = FreePort();
    m_origin = "http://127.0.0.1:" + std::to_string(port);
    std::string server = ListenLine(port, "") + setup.locations;
    if (!setup.certificate.empty()) {
        WriteFile("server.pem", setup.certificate);
        const unsigned short securePort = FreePort();
        m_secureOrigin = "https://127.0.0.1:" + std::to_string(securePort);
        server += ListenLine(securePort, " ssl") + CertificateLines(m_directory + "/server.pem");
    }
    WriteFile("nginx.conf", Configuration(m_directory, server));
    Start(port);
}

BenchServer::~BenchServer() {
    if (m_process > 0) {
        ::kill(m_process, SIGTERM);
        ::waitpid(m_process, nullptr, 0);
    }
    std::error_code ignored;
    std::filesystem::remove_all(m_directory, ignored);
}

void BenchServer::WriteFile(const std::string& name, const std::string& content) const {
    std::ofstream(m_directory + "/" + name, std::ios::binary) << content;
}

void BenchServer::Start(unsigned short port) {
    const std::string configuration = m_directory + "/nginx.conf";
    const char* arguments[] = {"nginx", "-c", configuration.c_str(), "-p", m_directory.c_str(),
                               nullptr};
    // Debian keeps nginx where an ordinary user's PATH does not look.
    const char* programs[] = {"/usr/sbin/nginx", "nginx"};
    for (const char* program : programs)
        if (::posix_spawnp(&m_process, program, nullptr, nullptr,
                           const_cast<char* const*>(arguments), environ) == 0)
            return WaitUntilReady(port);
    throw std::runtime_error("nginx cannot be started; scripts/setup installs it");
}

void BenchServer::WaitUntilReady(unsigned short port) const {
    for (int attempt = 0; attempt < 500; ++attempt) {
        if (IsListening(port)) return;
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    throw std::runtime_error("nginx did not start listening");
}
