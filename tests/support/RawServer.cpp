#include "support/RawServer.h"

#include <chrono>
#include <stdexcept>
#include <string_view>

#include <netinet/in.h>
#include <openssl/ssl.h>
#include <sys/socket.h>
#include <unistd.h>

#include "internet/SigpipeGuard.h"

namespace test_support {
namespace {

std::shared_ptr<SSL_CTX> MakeContext(const Certificate& certificate, bool isOld) {
    std::shared_ptr<SSL_CTX> context(SSL_CTX_new(TLS_server_method()), &SSL_CTX_free);
    if (isOld) SSL_CTX_set_max_proto_version(context.get(), TLS1_2_VERSION);
    if (SSL_CTX_use_certificate(context.get(), certificate.X509Pointer()) != 1 ||
        SSL_CTX_use_PrivateKey(context.get(), certificate.KeyPointer()) != 1)
        throw std::runtime_error("the raw test server cannot use its certificate");
    return context;
}

} // namespace

class RawConnection {
public:
    RawConnection(int socket, SSL_CTX* context)
        : m_socket(socket), m_tls(context ? SSL_new(context) : nullptr, &SSL_free) {
        if (!m_tls) return;
        SSL_set_fd(m_tls.get(), socket);
        SSL_accept(m_tls.get());
    }

    // The head of the request; empty when the client goes away first.
    std::string ReceiveHead() {
        std::string head;
        char buffer[4096];
        while (head.find("\r\n\r\n") == std::string::npos) {
            const auto count = m_tls ? SSL_read(m_tls.get(), buffer, sizeof buffer)
                                     : recv(m_socket, buffer, sizeof buffer, 0);
            if (count <= 0) return {};
            head.append(buffer, static_cast<std::size_t>(count));
        }
        return head;
    }
    bool Send(std::string_view bytes) {
        while (!bytes.empty()) {
            const auto count =
                m_tls ? SSL_write(m_tls.get(), bytes.data(), static_cast<int>(bytes.size()))
                      : send(m_socket, bytes.data(), bytes.size(), MSG_NOSIGNAL);
            if (count <= 0) return false;
            bytes.remove_prefix(static_cast<std::size_t>(count));
        }
        return true;
    }
    // What is left to do is to close the socket.
    void End(ConnectionEnd end) {
        const linger atOnce{1, 0};
        if (m_tls && end == ConnectionEnd::told) SSL_shutdown(m_tls.get());
        if (end == ConnectionEnd::reset)
            setsockopt(m_socket, SOL_SOCKET, SO_LINGER, &atOnce, sizeof atOnce);
    }

private:
    int m_socket;
    std::unique_ptr<SSL, decltype(&SSL_free)> m_tls;
};

RawServer::RawServer(const std::optional<Certificate>& certificate, bool isOld) {
    if (certificate) m_context = MakeContext(*certificate, isOld);
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
    return (m_context ? "https://127.0.0.1:" : "http://127.0.0.1:") + std::to_string(m_port) + path;
}

void RawServer::Set(const std::string& path, std::string bytes, std::shared_ptr<Gate> gate,
                    std::string rest) {
    const std::lock_guard lock(m_mutex);
    m_replies[path] = {std::move(bytes), std::move(gate), std::move(rest)};
}

void RawServer::Set(const std::string& path, std::string bytes, ConnectionEnd end,
                    std::string rest) {
    const std::lock_guard lock(m_mutex);
    m_replies[path] = {std::move(bytes), nullptr, std::move(rest), end};
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
    const platform::SigpipeGuard guard; // TLS writes without MSG_NOSIGNAL
    {
        RawConnection peer(connection, m_context.get());
        bool isKept = false;
        while (Answer(peer, isKept))
            isKept = true;
    }
    const std::lock_guard lock(m_mutex);
    m_open.erase(connection);
    close(connection);
}

// True when the connection is kept.
bool RawServer::Answer(RawConnection& connection, bool isKept) {
    const std::string head = connection.ReceiveHead();
    if (head.empty()) return false;
    const Reply reply = ReplyFor(head);
    if (isKept && head.starts_with("POST ")) return false;
    connection.Send(reply.bytes);
    if (reply.gate) reply.gate->Wait();
    while (connection.Send(reply.rest) && reply.end == ConnectionEnd::none)
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    if (reply.bytes.find("\r\nConnection: keep-alive\r\n") != std::string::npos) return true;
    connection.End(reply.end);
    return false;
}

RawServer::Reply RawServer::ReplyFor(const std::string& request) {
    const std::size_t begin = request.find(' ') + 1;
    const std::string path = request.substr(begin, request.find_first_of(" ?", begin) - begin);
    const std::lock_guard lock(m_mutex);
    m_requests.push_back(request.substr(0, request.find("\r\n\r\n") + 4));
    return m_replies[path];
}

std::vector<std::string> RawServer::Requests() {
    const std::lock_guard lock(m_mutex);
    return m_requests;
}

} // namespace test_support
