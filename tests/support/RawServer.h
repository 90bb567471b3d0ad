// A loopback server that sends exactly the bytes it is told to and then ends the connection: for
// replies that no proper server would give. After a reply that says so ("Connection: keep-alive")
// it keeps the connection, until a request without a reply or a POST comes: as by one that was
// about to close it, that is read and not answered.
#pragma once

#include <atomic>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include "support/Certificates.h"
#include "support/Gate.h"

// As libssl declares it.
struct ssl_ctx_st;

namespace test_support {

class RawConnection;

// How a server ends a connection: as it should be, without TLS's word for that, by a reset; never.
enum class ConnectionEnd { told, cut, reset, none };

class RawServer {
public:
    // With a certificate it speaks HTTPS, by TLS 1.2 when it is old.
    explicit RawServer(const std::optional<Certificate>& certificate = std::nullopt,
                       bool isOld = false);
    ~RawServer();
    RawServer(const RawServer&) = delete;
    RawServer& operator=(const RawServer&) = delete;

    int Port() const { return m_port; }
    std::string Url(const std::string& path) const;
    // The reply for a path. With a gate, `rest` follows once the gate is open.
    void Set(const std::string& path, std::string bytes, std::shared_ptr<Gate> gate = nullptr,
             std::string rest = "");
    // Without an end, `rest` comes over and over, until the client goes away.
    void Set(const std::string& path, std::string bytes, ConnectionEnd end, std::string rest = "");
    // The heads that have arrived, byte for byte, oldest first.
    std::vector<std::string> Requests();

private:
    struct Reply {
        std::string bytes;
        std::shared_ptr<Gate> gate;
        std::string rest;
        ConnectionEnd end = ConnectionEnd::told;
    };

    void Listen();
    void EndConnections();
    void Serve(int connection);
    bool Answer(RawConnection& connection, bool isKept);
    Reply ReplyFor(const std::string& request);

    std::shared_ptr<ssl_ctx_st> m_context; // null: no TLS
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
