#include "support/RawServer.h"

#include <stdexcept>
#include <string_view>

#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

namespace test_support {
namespace {

// The head of the request; empty when the client goes away first.
std::string ReceiveHead(int connection) {
    std::string head;
    char buffer[4096];
    while (head.find("\r\n\r\n") == std::string::npos) {
        const ssize_t count = recv(connection, buffer, sizeof buffer, 0);
        if (count <= 0) return {};
        head.append(buffer, static_cast<std::size_t>(count));
    }
    return head;
}

void SendAll(int connection, std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t count = send(connection, bytes.data(), bytes.size(), MSG_NOSIGNAL);
        if (count <= 0) return;
        bytes.remove_prefix(static_cast<std::size_t>(count));
    }
}

} // namespace

RawServer::RawServer() {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t length = sizeof address;
    auto* pAddress = reinterpret_cast<sockaddr*>(&address);
    m_listener = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (m_listener < 0 || bind(m_listener, pAddress, length) != 0 || listen(m_listener, 64) != 0 ||
        getsockname(m_listener, pAddress, &length) != 0)
        throw std::runtime_error("the raw test server cannot listen");
    m_port = ntohs(address.sin_port);
    m_thread = std::thread([this] { Listen(); });
}

RawServer::~RawServer() {
    m_isEnding = true;
    shutdown(m_listener, SHUT_RDWR); // ends the accept
    m_thread.join();
    close(m_listener);
}

std::string RawServer::Url(const std::string& path) const {
    return "http://127.0.0.1:" + std::to_string(m_port) + path;
}

void RawServer::Set(const std::string& path, std::string bytes, std::shared_ptr<Gate> gate,
                    std::string rest) {
    const std::lock_guard lock(m_mutex);
    m_replies[path] = {std::move(bytes), std::move(gate), std::move(rest)};
}

void RawServer::Listen() {
    while (!m_isEnding) {
        const int connection = accept4(m_listener, nullptr, nullptr, SOCK_CLOEXEC);
        if (connection < 0) continue;
        {
            const std::lock_guard lock(m_mutex);
            m_open.insert(connection);
        }
        m_connections.emplace_back([this, connection] { Serve(connection); });
    }
    EndConnections();
    for (std::thread& connection : m_connections)
        connection.join();
}

// Browsers open connections ahead of requests that may never come.
void RawServer::EndConnections() {
    const std::lock_guard lock(m_mutex);
    for (const int connection : m_open)
        shutdown(connection, SHUT_RDWR);
}

void RawServer::Serve(int connection) {
    bool isKept = false;
    while (Answer(connection, isKept))
        isKept = true;
    const std::lock_guard lock(m_mutex);
    m_open.erase(connection);
    close(connection);
}

// True when the connection is kept.
bool RawServer::Answer(int connection, bool isKept) {
    const std::string head = ReceiveHead(connection);
    if (head.empty()) return false;
    const Reply reply = ReplyFor(head);
    if (isKept && head.starts_with("POST ")) return false;
    SendAll(connection, reply.bytes);
    if (reply.gate) reply.gate->Wait();
    SendAll(connection, reply.rest);
    return reply.bytes.find("\r\nConnection: keep-alive\r\n") != std::string::npos;
}

RawServer::Reply RawServer::ReplyFor(const std::string& request) {
    const std::size_t begin = request.find(' ') + 1;
    const std::string path = request.substr(begin, request.find(' ', begin) - begin);
    const std::lock_guard lock(m_mutex);
    m_requests.push_back(request.substr(0, request.find("\r\n\r\n") + 4));
    return m_replies[path];
}

std::vector<std::string> RawServer::Requests() {
    const std::lock_guard lock(m_mutex);
    return m_requests;
}

} // namespace test_support
