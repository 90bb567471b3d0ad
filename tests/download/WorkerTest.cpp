// Downloads from a real server, beside each other, and the waits for their workers.
#include <atomic>
#include <functional>
#include <memory>
#include <thread>
#include <utility>

#include <ZrHbInet.h>
#include <gmock/gmock.h>

#include "support/ManualClock.h"
#include "support/PumpUntil.h"
#include "support/RawServer.h"
#include "support/ScriptedInternet.h"
#include "support/TemporaryHome.h"
#include "support/TestServer.h"
#include "support/TestWindow.h"

using namespace test_support;
using testing::ElementsAre;

namespace {

// On the test's thread only.
std::vector<UINT> g_received;
std::function<void()> g_onNextMessage;

LRESULT OnWorkerMessage(HWND hWnd, UINT nMessage, WPARAM wParam, LPARAM lParam) {
    if (nMessage < CZrHbInet::eMessage_Progress || nMessage > CZrHbInet::eMessage_Failed)
        return DefWindowProcA(hWnd, nMessage, wParam, lParam);
    g_received.push_back(nMessage);
    if (const auto action = std::exchange(g_onNextMessage, nullptr)) action();
    return 0;
}

std::string Noise(std::size_t size, unsigned seed) {
    std::string bytes(size, '\0');
    for (char& byte : bytes)
        byte = static_cast<char>((seed = seed * 1664525 + 1013904223) >> 24);
    return bytes;
}

class DownloadWorkers : public testing::Test {
protected:
    DownloadWorkers() {
        g_received.clear();
        AfxRegisterWindowClass("worker test", OnWorkerMessage);
        m_window = std::make_unique<TestWindow>("worker", nullptr, "worker test");
    }
    CString File(const char* name = "file") const {
        return CString(std::string_view(m_home.Path(name)));
    }
    // The window's messages from the start until a stop, which comes as soon as `mayStop`, has
    // ended the download.
    std::vector<UINT> MessagesOfStopped(const std::string& url,
                                        const std::function<bool()>& mayStop) {
        g_received.clear();
        CZrHbInet inet;
        EXPECT_EQ(
            inet.StartDownloadFile2(eAppGroup_2, url.c_str(), File(), CWnd::FromHandle(*m_window)),
            TRUE);
        PumpUntil(mayStop, "the moment of the stop");
        inet.StopDownloadFile();
        const auto hasEnded = [] {
            return !g_received.empty() && g_received.back() != CZrHbInet::eMessage_Progress;
        };
        PumpUntil(hasEnded, "the end of what was stopped");
        return g_received;
    }

    TemporaryHome m_home;
    std::unique_ptr<TestWindow> m_window;
};

} // namespace

TEST_F(DownloadWorkers, FetchLargeFilesBesideEachOther) {
    constexpr unsigned kDownloads = 10;
    TestServer server;
    for (unsigned i = 0; i < kDownloads; ++i) {
        const std::string name = std::to_string(i);
        server.Set("/" + name, Redirect(302, "/file" + name));
        server.Set("/file" + name,
                   Bytes("application/pdf", Noise(i == 0 ? 10'000'000 : 70'000, i)));
    }
    std::vector<std::thread> threads;
    std::atomic<int> complete{0};
    for (unsigned i = 0; i < kDownloads; ++i)
        threads.emplace_back([&, name = std::to_string(i)] {
            CZrHbInet inet;
            complete += inet.DownloadFile(server.Url("/" + name).c_str(), File(name.c_str()));
        });
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(complete, 10);
    for (unsigned i = 0; i < kDownloads; ++i)
        EXPECT_TRUE(m_home.ReadFile(std::to_string(i)) == Noise(i == 0 ? 10'000'000 : 70'000, i));
}

TEST_F(DownloadWorkers, StopWhileTheServerIsSilent) {
    const auto gate = std::make_shared<Gate>();
    RawServer server;
    server.Set("/head", "HTTP/1.1 200 OK\r\n", gate);
    server.Set("/body", "HTTP/1.1 200 OK\r\nContent-Length: 9\r\n\r\nbegin", gate);
    EXPECT_THAT(MessagesOfStopped(server.Url("/head"), [&] { return !server.Requests().empty(); }),
                ElementsAre(UINT{CZrHbInet::eMessage_Failed}));
    EXPECT_EQ(m_home.ReadFile("file"), std::nullopt);
    EXPECT_THAT(MessagesOfStopped(server.Url("/body"), [] { return !g_received.empty(); }),
                ElementsAre(UINT{CZrHbInet::eMessage_Progress}, UINT{CZrHbInet::eMessage_Stopped}));
    EXPECT_EQ(m_home.ReadFile("file"), "begin");
    gate->Open();
}

// The end of an object handles the message of a worker, whose handler waits for the same worker.
TEST_F(DownloadWorkers, AreWaitedForWhileTheirMessagesStartOthers) {
    ManualClock clock;
    const platform::ScopedService<platform::Clock> installedClock(clock);
    ScriptedInternet internet;
    const platform::ScopedService<platform::Internet> installedInternet(internet);
    internet.body = "bytes";
    CZrHbInet second;
    const char* const url = "http://bank.test/";
    g_onNextMessage = [&] {
        EXPECT_EQ(second.StartDownloadFile(url, File("second"), nullptr), TRUE);
    };
    {
        CZrHbInet first;
        EXPECT_EQ(first.StartDownloadFile(url, File(), CWnd::FromHandle(*m_window)), TRUE);
    }
    EXPECT_THAT(g_received, ElementsAre(UINT{CZrHbInet::eMessage_Ended}));
    PumpUntil([&] { return m_home.ReadFile("second") == "bytes"; }, "the second file");
}

TEST_F(DownloadWorkers, OutliveTheirWindow) {
    ManualClock clock;
    const platform::ScopedService<platform::Clock> installedClock(clock);
    ScriptedInternet internet;
    const platform::ScopedService<platform::Internet> installedInternet(internet);
    internet.body = std::string(2048, 'x');
    internet.contentLength = 2048;
    g_onNextMessage = [&] { m_window.reset(); };
    CZrHbInet().StartDownloadFile("http://bank.test/", File(), CWnd::FromHandle(*m_window));
    EXPECT_THAT(g_received, ElementsAre(UINT{CZrHbInet::eMessage_Progress}));
    EXPECT_EQ(clock.TickCount(), 5000u);
    EXPECT_EQ(m_home.ReadFile("file"), internet.body);
}
