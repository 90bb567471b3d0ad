// nginx on a free loopback port with one page, in a process of its own so that its processor time
// is not ours.
#pragma once

#include <string>

#include <sys/types.h>

class BenchServer {
public:
    // Throws std::runtime_error when nginx cannot be started.
    explicit BenchServer(const std::string& page);
    ~BenchServer();
    BenchServer(const BenchServer&) = delete;
    BenchServer& operator=(const BenchServer&) = delete;
    const std::string& Url() const { return m_url; }

private:
    void WriteFile(const std::string& name, const std::string& content) const;
    void Start(unsigned short port);
    void WaitUntilReady(unsigned short port) const;

    std::string m_directory;
    std::string m_url;
    pid_t m_process = -1;
};
