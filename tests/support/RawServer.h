// A loopback server that sends exactly the bytes it is told to and then closes the connection: for
// replies that no proper server would give. After a reply that says so ("Connection: keep-alive")
// it keeps the connection, until a request without a reply or a POST comes: as by one that was
// about to close it, that is read and not answered.
#pragma once

#include <atomic>
#include <map>
#include <memory>
#include <mutex>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include "support/Gate.h"

namespace test_support {

class RawServer {
public:
    RawServer();
    ~RawServer();
    RawServer(const RawServer&) = delete;
    RawServer& operator=(const RawServer&) = delete;

    int Port() const { return m_port; }
    std::string Url(const std::string& path) const;
    // The reply for a path. With a gate, `rest` follows once the gate is open.
    void Set(const std::string& path, std::string bytes, std::shared_ptr<Gate> gate = nullptr,
             std::string rest = "");
    // The heads that have arrived, byte for byte, oldest first.
    std::vector<std::string> Requests();

private:
    struct Reply {
        std::string bytes;
        std::shared_ptr<Gate> gate;
        std::string rest;
    };

    void Listen();
    void EndConnections();
    void Serve(int connection);
    bool Answer(int connection, bool isKept);
    Reply ReplyFor(const std::string& request);

    int m_listener = -1;
    int m_port = 0;
    std::atomic<bool> m_isEnding{false};
    std::mutex m_mutex;
    std::map<std::string, Reply> m_replies;
    std::vector<std::string> m_requests;
    std::set<int> m_open;
    std::vector<std::thread> m_connections; // the listening thread's
    std::thread m_thread;
};

} // namespace test_support
