#include "support/TestServer.h"

#include <algorithm>
#include <mutex>
#include <stdexcept>
#include <thread>

// The library as the system has it was built with these.
#define CPPHTTPLIB_OPENSSL_SUPPORT
#define CPPHTTPLIB_ZLIB_SUPPORT
#define CPPHTTPLIB_BROTLI_SUPPORT
#include <httplib.h>

namespace test_support {
namespace {

constexpr std::size_t kThreads = 48; // each open connection keeps one busy

bool IsEqualIgnoringCase(const std::string& a, const std::string& b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(), [](unsigned char x, unsigned char y) {
        return std::tolower(x) == std::tolower(y);
    });
}

std::string EchoText(const ReceivedRequest& request) {
    std::string text = request.method + " " + request.target + "\n";
    for (const auto& [name, value] : request.headers)
        text += name + ": " + value + "\n";
    return text + "\n" + request.body;
}

bool WritePieces(const Answer& answer, httplib::DataSink& sink) {
    for (std::size_t index = 0; index < answer.pieces.size(); ++index) {
        if (index > 0 && answer.pieceGate) answer.pieceGate->Wait();
        const std::string& piece = answer.pieces[index];
        if (!piece.empty() && !sink.write(piece.data(), piece.size())) return false;
    }
    return true;
}

void SendInPieces(httplib::Response& response, const Answer& answer) {
    if (!answer.pieceGate)
        return response.set_chunked_content_provider(
            answer.type, [answer](std::size_t, httplib::DataSink& sink) {
                if (!WritePieces(answer, sink)) return false;
                sink.done();
                return true;
            });
    // The library compresses chunked texts and would hold pieces back.
    std::size_t length = 0;
    for (const std::string& piece : answer.pieces)
        length += piece.size();
    response.set_content_provider(length, answer.type,
                                  [answer](std::size_t, std::size_t, httplib::DataSink& sink) {
                                      return WritePieces(answer, sink);
                                  });
}

} // namespace

Answer Html(std::string body) {
    return Bytes("text/html", std::move(body));
}

Answer Bytes(std::string type, std::string body) {
    Answer answer;
    answer.type = std::move(type);
    answer.body = std::move(body);
    return answer;
}

Answer Redirect(int status, std::string location) {
    Answer answer = Html("<p>moved</p>");
    answer.status = status;
    answer.headers = {{"Location", std::move(location)}};
    return answer;
}

std::string ReceivedRequest::Header(const std::string& name) const {
    std::string joined;
    bool isThere = false;
    for (const auto& [field, value] : headers) {
        if (!IsEqualIgnoringCase(field, name)) continue;
        joined += (isThere ? "|" : "") + value;
        isThere = true;
    }
    return isThere ? joined : "(none)";
}

class TestServer::Implementation {
public:
    explicit Implementation(const std::optional<Certificate>& certificate)
        : m_isSecure(certificate.has_value()), m_server(Make(certificate)) {
        m_server->new_task_queue = [] { return new httplib::ThreadPool(kThreads); };
        m_server->set_tcp_nodelay(true);
        m_server->set_keep_alive_max_count(100000);
        m_server->set_keep_alive_timeout(2);
        const auto handle = [this](const httplib::Request& request, httplib::Response& response) {
            Handle(request, response);
        };
        m_server->Get(".*", handle);
        m_server->Post(".*", handle);
        m_port = m_server->bind_to_any_port("127.0.0.1");
        if (m_port <= 0) throw std::runtime_error("the test server cannot listen");
        m_thread = std::thread([this] { m_server->listen_after_bind(); });
        while (!m_server->is_running())
            std::this_thread::yield();
    }

    ~Implementation() {
        m_server->stop();
        m_thread.join();
    }

    int Port() const { return m_port; }
    std::string Origin() const {
        return (m_isSecure ? "https://127.0.0.1:" : "http://127.0.0.1:") + std::to_string(m_port);
    }

    void Set(const std::string& path, Answer answer) {
        const std::lock_guard lock(m_mutex);
        m_answers[path] = std::move(answer);
    }

    std::vector<ReceivedRequest> Requests(const std::string& path) const {
        const std::lock_guard lock(m_mutex);
        std::vector<ReceivedRequest> requests;
        for (const auto& [requestPath, request] : m_requests)
            if (path.empty() || path == requestPath) requests.push_back(request);
        return requests;
    }

private:
    static std::unique_ptr<httplib::Server> Make(const std::optional<Certificate>& certificate) {
        if (!certificate) return std::make_unique<httplib::Server>();
        return std::make_unique<httplib::SSLServer>(certificate->X509Pointer(),
                                                    certificate->KeyPointer());
    }

    void Handle(const httplib::Request& request, httplib::Response& response) {
        ReceivedRequest received{request.method, request.target, {}, request.body};
        for (const auto& [name, value] : request.headers)
            if (name != "REMOTE_ADDR" && name != "REMOTE_PORT" && name != "LOCAL_ADDR" &&
                name != "LOCAL_PORT") // the library's own
                received.headers.emplace_back(name, value);
        const Answer answer = Record(request.path, received);
        if (answer.gate) answer.gate->Wait();
        response.status = answer.status;
        for (const auto& [name, value] : answer.headers)
            response.headers.emplace(name, value);
        if (answer.pieces.empty()) {
            response.body = answer.body;
            if (!answer.type.empty()) response.headers.emplace("Content-Type", answer.type);
        } else {
            SendInPieces(response, answer);
        }
    }

    Answer Record(const std::string& path, const ReceivedRequest& request) {
        const std::lock_guard lock(m_mutex);
        // Chromium asks for the icon when it pleases.
        if (path != "/favicon.ico") m_requests.emplace_back(path, request);
        const auto found = m_answers.find(path);
        if (found != m_answers.end())
            return found->second.choose ? found->second.choose(request) : found->second;
        if (path == "/echo") return Bytes("text/plain", EchoText(request));
        Answer answer = Html("<p>no such page</p>");
        answer.status = 404;
        if (path == "/set-cookie") {
            answer = Html("<p>set</p>");
            answer.headers = {{"Set-Cookie", request.target.substr(request.target.find('?') + 1)}};
        }
        return answer;
    }

    const bool m_isSecure;
    const std::unique_ptr<httplib::Server> m_server;
    int m_port = 0;
    mutable std::mutex m_mutex;
    std::map<std::string, Answer> m_answers;
    std::vector<std::pair<std::string, ReceivedRequest>> m_requests;
    std::thread m_thread;
};

TestServer::TestServer(std::optional<Certificate> certificate)
    : m_implementation(std::make_unique<Implementation>(certificate)) {}

TestServer::~TestServer() = default;

int TestServer::Port() const {
    return m_implementation->Port();
}

std::string TestServer::Url(const std::string& path) const {
    return m_implementation->Origin() + path;
}

void TestServer::Set(const std::string& path, Answer answer) {
    m_implementation->Set(path, std::move(answer));
}

std::vector<ReceivedRequest> TestServer::Requests(const std::string& path) const {
    return m_implementation->Requests(path);
}

} // namespace test_support
