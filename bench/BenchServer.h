// nginx on free loopback ports, in a process of its own so that its processor time is not ours. It
// serves the files of one directory.
#pragma once

#include <string>

#include <sys/types.h>

class BenchServer {
public:
    struct Setup {
        std::string page;        // under /page
        std::string locations;   // more lines of the configuration's server block
        std::string certificate; // with its key in PEM: speaks HTTPS, too, on a second port
    };
    // These throw std::runtime_error when nginx cannot be started.
    explicit BenchServer(const Setup& setup);
    explicit BenchServer(const std::string& page) : BenchServer(Setup{page, {}, {}}) {}
    ~BenchServer();
    BenchServer(const BenchServer&) = delete;
    BenchServer& operator=(const BenchServer&) = delete;
    std::string Url(const std::string& path = "/page") const { return m_origin + path; }
    std::string SecureUrl(const std::string& path) const { return m_secureOrigin + path; }
    // The file under that path of a URL.
    std::string File(const std::string& path) const { return m_directory + "/www" + path; }

private:
    void WriteFile(const std::string& name, const std::string& content) const;
    void Start(unsigned short port);
    void WaitUntilReady(unsigned short port) const;

    std::string m_directory;
    std::string m_origin;
    std::string m_secureOrigin;
    pid_t m_process = -1;
};
