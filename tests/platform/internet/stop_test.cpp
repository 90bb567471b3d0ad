// Waits that end when they are told to, whatever the server does or does not do.
#include <atomic>
#include <chrono>
#include <cstring>
#include <future>
#include <memory>
#include <thread>

#include <gmock/gmock.h>

#include <dlfcn.h>
#include <netdb.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include "platform/internet/InternetClient.h"
#include "support/RawServer.h"
#include "support/TestServer.h"

namespace {

constexpr const char* kSlowName = "slow-name.invalid";
std::atomic<bool> s_isSlow{false};
std::atomic<int> s_lookUps{0}; // of the slow name, under way

} // namespace

// The transfer library calls this one: what a program shows comes before what libraries have.
extern "C" __attribute__((visibility("default"))) int
getaddrinfo(const char* node, const char* service, const addrinfo* hints, addrinfo** result) {
    static const auto next =
        reinterpret_cast<decltype(&getaddrinfo)>(dlsym(RTLD_NEXT, "getaddrinfo"));
    if (!node || std::strcmp(node, kSlowName) != 0) return next(node, service, hints, result);
    ++s_lookUps;
    while (s_isSlow)
        std::this_thread::yield();
    --s_lookUps;
    return EAI_NONAME;
}

namespace platform_test {
namespace {

using namespace test_support;
using namespace std::chrono_literals;
using std::chrono::steady_clock;

// Its queue is full: it takes no connections.
class FullServer {
public:
    FullServer() {
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        socklen_t length = sizeof address;
        auto* pAddress = reinterpret_cast<sockaddr*>(&address);
        m_sockets.push_back(socket(AF_INET, SOCK_STREAM, 0));
        EXPECT_EQ(0, bind(m_sockets[0], pAddress, length));
        EXPECT_EQ(0, listen(m_sockets[0], 0));
        EXPECT_EQ(0, getsockname(m_sockets[0], pAddress, &length));
        url = "http://127.0.0.1:" + std::to_string(ntohs(address.sin_port)) + "/";
        for (int filler = 0; filler < 4; ++filler) {
            m_sockets.push_back(socket(AF_INET, SOCK_STREAM | SOCK_NONBLOCK, 0));
            connect(m_sockets.back(), pAddress, length);
        }
    }
    ~FullServer() {
        for (int one : m_sockets)
            close(one);
    }
    FullServer(const FullServer&) = delete;
    FullServer& operator=(const FullServer&) = delete;
    std::string url;

private:
    std::vector<int> m_sockets;
};

// Runs `wait`, which must wait, and `end` beside it; how long `wait` went on after that.
template <class TWait, class TEnd>
std::chrono::milliseconds TimeToEnd(TWait wait, TEnd end) {
    steady_clock::time_point ended;
    std::thread ender([&] {
        std::this_thread::sleep_for(150ms); // it waits by then
        ended = steady_clock::now();
        end();
    });
    wait();
    const auto now = steady_clock::now();
    ender.join();
    return std::chrono::duration_cast<std::chrono::milliseconds>(now - ended);
}

// 250 ms are promised; a busy machine may take longer, and much longer under a sanitizer.
#if defined(__SANITIZE_THREAD__) || defined(__SANITIZE_ADDRESS__)
constexpr auto kAtMost = 5s;
#else
constexpr auto kAtMost = 400ms;
#endif

TEST(Stop, EndsTheWaitForTheHeadInEveryPhase) {
    s_isSlow = true;
    const FullServer full;
    RawServer server;
    const auto gate = std::make_shared<Gate>();
    server.Set("/silent", "", gate);
    server.Set("/head", "HTTP/1.1 200 OK\r\nConte", gate);
    const std::string silent = "https://127.0.0.1:" + std::to_string(server.Port()) + "/";
    const InternetHandle session = OpenSession();
    for (const std::string& url : {"http://" + std::string(kSlowName) + "/", full.url, silent,
                                   server.Url("/silent"), server.Url("/head")}) {
        std::atomic<int> word{0};
        const platform::ScopedInternetStop stop(word);
        const auto time = TimeToEnd(
            [&] {
                EXPECT_FALSE(OpenUrl(session, url));
                EXPECT_EQ(ERROR_INTERNET_OPERATION_CANCELLED, GetLastError());
                EXPECT_EQ("the request was stopped", LastResponseText());
            },
            [&] { word = 1; });
        EXPECT_GE(time, 0ms) << url;
        EXPECT_LT(time, kAtMost) << url;
    }
    EXPECT_EQ(1, s_lookUps); // nobody has waited for it
    s_isSlow = false;
    while (s_lookUps > 0)
        std::this_thread::yield();
    gate->Open();
}

TEST(Stop, EndsTheWaitForTheBody) {
    RawServer server;
    const auto gate = std::make_shared<Gate>();
    server.Set("/", "HTTP/1.1 200 OK\r\nContent-Length: 4\r\n\r\nab", gate, "cd");
    const InternetHandle session = OpenSession();
    const InternetHandle request = OpenUrl(session, server.Url("/"));
    Body body;
    {
        std::atomic<int> word{0};
        const platform::ScopedInternetStop stop(word);
        EXPECT_LT(TimeToEnd([&] { body = ReadAll(request); }, [&] { word = 1; }), kAtMost);
    }
    EXPECT_EQ(nullptr, platform::ScopedInternetStop::Current());
    EXPECT_EQ("ab", body.bytes);
    EXPECT_EQ(ERROR_INTERNET_OPERATION_CANCELLED, body.error);
    gate->Open();
    EXPECT_EQ("cd", ReadAll(request).bytes); // the transfer itself is as it was
}

TEST(Stop, ClosingAHandleEndsWhatWaitsOnIt) {
    RawServer server;
    const auto gate = std::make_shared<Gate>();
    server.Set("/head", "", gate);
    server.Set("/body", "HTTP/1.1 200 OK\r\n\r\n", gate);
    InternetHandle session = OpenSession();
    InternetHandle request = OpenUrl(session, server.Url("/body"));
    const HINTERNET closed = request.Get();
    Body body;
    EXPECT_LT(TimeToEnd([&] { body = ReadAll(request); },
                        [&] { EXPECT_TRUE(InternetCloseHandle(closed)); }),
              kAtMost);
    EXPECT_EQ(ERROR_INTERNET_OPERATION_CANCELLED, body.error);
    static_cast<void>(request.Release());

    const HINTERNET closedSession = session.Get();
    EXPECT_LT(TimeToEnd([&] { EXPECT_FALSE(OpenUrl(session, server.Url("/head"))); },
                        [&] { EXPECT_TRUE(InternetCloseHandle(closedSession)); }),
              kAtMost);
    static_cast<void>(session.Release());
    gate->Open();
}

// 5 ms lie between two bytes of each reply.
TEST(Stop, ATimeWithoutProgressIsTheEnd) {
    RawServer server;
    const std::string ok = "HTTP/1.1 200 OK\r\n";
    server.Set("/head", ok, ConnectionEnd::none, "X: 1\r\n");
    server.Set("/chunk", ok + "Transfer-Encoding: chunked\r\n\r\n2\r\n12\r\n4;",
               ConnectionEnd::none, "x");
    server.Set("/slow", ok + "Content-Length: 100\r\n\r\n", ConnectionEnd::none, "x");
    const auto setTime = [](HINTERNET session, DWORD option, DWORD time) {
        return InternetSetOptionA(session, option, &time, sizeof time);
    };
    EXPECT_TRUE(setTime(nullptr, INTERNET_OPTION_RECEIVE_TIMEOUT, 300));
    const InternetHandle session = OpenSession();
    EXPECT_TRUE(setTime(nullptr, INTERNET_OPTION_RECEIVE_TIMEOUT, 0));
    EXPECT_FALSE(setTime(session.Get(), 99, 0));
    EXPECT_FALSE(OpenUrl(session, server.Url("/head")));
    EXPECT_EQ(ERROR_INTERNET_TIMEOUT, ReadAll(OpenUrl(session, server.Url("/chunk"))).error);
    EXPECT_EQ("no progress within 300 ms", LastResponseText());
    EXPECT_EQ(100u, ReadAll(OpenUrl(session, server.Url("/slow"))).bytes.size());
}

TEST(Stop, RequestsOfOneSessionRunSideBySide) {
    TestServer server;
    const std::string text(2'000'000, 'x');
    server.Set("/", Bytes("text/plain", text));
    const InternetHandle session = OpenSession();
    std::vector<std::future<std::size_t>> readers;
    for (int reader = 0; reader < 4; ++reader)
        readers.push_back(std::async(std::launch::async, [&] {
            std::size_t size = 0;
            for (int round = 0; round < 3; ++round)
                size += ReadAll(OpenUrl(session, server.Url("/"))).bytes.size();
            return size;
        }));
    for (auto& reader : readers)
        EXPECT_EQ(3 * text.size(), reader.get());
}

} // namespace
} // namespace platform_test
