// A browser driver in a node process of its own (peers/peer.js), told by lines what to do.
#pragma once

#include <string>

#include <sys/types.h>

struct PeerAnswer {
    double milliseconds; // inside the peer's process
    std::size_t bytes;   // of the page
};

class PeerProcess {
public:
    // Whether the drivers have been fetched and node is there.
    static bool IsAvailable();
    // driver: "playwright" or "puppeteer". Throws std::runtime_error when it cannot be started.
    PeerProcess(const std::string& driver, const std::string& chromium);
    // Lets it close its browser; what takes too long is killed.
    ~PeerProcess();
    PeerProcess(const PeerProcess&) = delete;
    PeerProcess& operator=(const PeerProcess&) = delete;

    // Launches the browser that Open uses.
    void StartBrowser();
    // These throw std::runtime_error with the driver's words when the page cannot be read.
    PeerAnswer Open(const std::string& url) { return Measure("open " + url); }
    PeerAnswer Post(const std::string& url) { return Measure("post " + url); }
    PeerAnswer Launch(const std::string& url) { return Measure("launch " + url); }

private:
    std::string Ask(const std::string& command);
    PeerAnswer Measure(const std::string& command);
    std::string ReadLine();
    bool HasEnded(int patienceMs) const;

    std::string m_driver;
    pid_t m_process = -1;
    int m_commands = -1;
    int m_answers = -1;
    std::string m_received;
};
