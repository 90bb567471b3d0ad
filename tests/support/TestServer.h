// A web server on the loopback interface that answers what the test tells it to. Two servers are
// two origins.
#pragma once

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "support/Certificates.h"
#include "support/Gate.h"

namespace test_support {

using HeaderList = std::vector<std::pair<std::string, std::string>>;

struct ReceivedRequest;

struct Answer {
    int status = 200;
    std::string type = "text/html"; // empty: no Content-Type
    std::string body;
    HeaderList headers;
    std::shared_ptr<Gate> gate; // the reply waits here before its first byte
    // When there are any, the body is sent in these pieces in place of `body`: chunked, or with a
    // pieceGate, where each but the first waits, under a Content-Length.
    std::vector<std::string> pieces;
    std::shared_ptr<Gate> pieceGate;
    // When set, it makes the answer, and nothing else here counts. Any thread.
    std::function<Answer(const ReceivedRequest&)> choose;
};

Answer Html(std::string body);
Answer Bytes(std::string type, std::string body);
Answer Redirect(int status, std::string location);

struct ReceivedRequest {
    std::string method;
    std::string target; // path and query
    HeaderList headers;
    std::string body;

    // The values of all fields of this name (any case), joined with "|"; "(none)" without any.
    std::string Header(const std::string& name) const;
};

// Paths without an answer are answered 404 with a short page. "/echo" answers, as text/plain, with
// the request line, the header lines and the body; "/set-cookie?NAME=VALUE" sets a cookie.
class TestServer {
public:
    // With a certificate it speaks HTTPS.
    explicit TestServer(std::optional<Certificate> certificate = std::nullopt);
    ~TestServer();
    TestServer(const TestServer&) = delete;
    TestServer& operator=(const TestServer&) = delete;

    int Port() const;
    // "http://127.0.0.1:PORT" + path.
    std::string Url(const std::string& path) const;
    void Set(const std::string& path, Answer answer);
    // What has arrived, oldest first; for one path (without query) or, empty, for all. Not the
    // icon that browsers ask for by themselves.
    std::vector<ReceivedRequest> Requests(const std::string& path = "") const;

private:
    class Implementation;
    std::unique_ptr<Implementation> m_implementation;
};

} // namespace test_support
