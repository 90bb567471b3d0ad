// The engine's steps over a scripted internet: what it does, tells and logs, and in what order.
#include <atomic>
#include <cstdlib>
#include <memory>
#include <thread>

#include <ZrHbInet.h>
#include <gmock/gmock.h>

#include "support/Gate.h"
#include "support/ManualClock.h"
#include "support/PumpUntil.h"
#include "support/ScriptedInternet.h"
#include "support/TemporaryHome.h"
#include "support/TestWindow.h"

using namespace test_support;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

namespace {

// The messages that the test's window has had, as number and lParam.
std::vector<std::pair<UINT, LPARAM>> g_messages; // on the test's thread only

LRESULT OnMessage(HWND hWnd, UINT nMessage, WPARAM wParam, LPARAM lParam) {
    if (nMessage < CZrHbInet::eMessage_Progress || nMessage > CZrHbInet::eMessage_Failed)
        return DefWindowProcA(hWnd, nMessage, wParam, lParam);
    g_messages.emplace_back(nMessage, lParam);
    return 0;
}

class Download : public testing::Test {
protected:
    Download() {
        g_messages.clear();
        AfxRegisterWindowClass("download test", OnMessage);
        m_window = std::make_unique<TestWindow>("download", nullptr, "download test");
    }
    CString File() const { return CString(std::string_view(m_home.Path("file"))); }
    std::string Content() const { return m_home.ReadFile("file").value_or("(none)"); }
    std::string Log() const { return m_home.ReadFile("log/zrhttpbase3.log").value_or(""); }
    int Fetch() { return CZrHbInet().DownloadFile("http://bank.test/list", File()); }
    // Runs a worker to its end; the messages are handled as its object goes.
    std::vector<std::pair<UINT, LPARAM>> MessagesOf(bool isFailureWanted) {
        g_messages.clear();
        {
            CZrHbInet inet;
            CWnd* const window = CWnd::FromHandle(*m_window);
            EXPECT_EQ(
                isFailureWanted
                    ? inet.StartDownloadFile2(eAppGroup_2, "http://bank.test/list", File(), window)
                    : inet.StartDownloadFile("http://bank.test/list", File(), window),
                TRUE);
        }
        return g_messages;
    }

    TemporaryHome m_home;
    ManualClock m_clock;
    platform::ScopedService<platform::Clock> m_installedClock{m_clock};
    ScriptedInternet m_internet;
    platform::ScopedService<platform::Internet> m_installedInternet{m_internet};
    std::unique_ptr<TestWindow> m_window;
};

} // namespace

TEST_F(Download, WritesTheReplyAndClosesWhatItOpened) {
    m_internet.body = std::string(300'000, 'x') + std::string("\0\r\n", 3);
    m_internet.contentLength = 300'003;
    EXPECT_EQ(Fetch(), TRUE);
    EXPECT_EQ(Content(), m_internet.body);
    EXPECT_THAT(m_internet.Calls(), ElementsAre("GetConnectedState", "Open", "OpenUrl",
                                                "QueryStatus", "QueryLength", "Read", "Close"));
    EXPECT_EQ(m_internet.OpenHandles(), 0u);
    for (const char* step :
         {"DownloadFile(http://bank.test/list, ", "InternetReadFileInSynchMode(http://bank.test/",
          "AssureBrowserIsOnline(http://bank.test/list)",
          "ConnectToInternet(http://bank.test/list)",
          "ReadFileFromInternet(http://bank.test/list)"})
        EXPECT_THAT(Log(), HasSubstr(step));
}

TEST_F(Download, TellsAFailureOfEachStepInTheLog) {
    const struct {
        const char* failing;
        const char* logged;
    } cases[] = {
        {"Open", "InternetOpen() -> Failed to open WinInet"},
        {"OpenUrl", "InternetOpenUrl() -> Failed to open WinInet with error 12029"},
        {"QueryStatus",
         "Failed in call to HttpQueryInfo for HTTP query status code, Error:12029\\n"},
    };
    for (const auto& one : cases) {
        m_internet.failing = {one.failing};
        EXPECT_EQ(Fetch(), FALSE);
        EXPECT_THAT(Log(), HasSubstr(one.logged));
        EXPECT_EQ(Content(), "(none)");
        EXPECT_EQ(m_internet.OpenHandles(), 0u) << one.failing;
    }
}

TEST_F(Download, EndsByTheLengthOfTheReply) {
    const struct {
        std::size_t sent;
        DWORD told;
        bool breaksOff;
        int result;
        std::vector<std::pair<UINT, LPARAM>> messages; // when failures are wanted
    } cases[] = {
        {1000, 1000, false, TRUE, {{6024, 100}, {6026, 0}}},
        {1000, 2000, true, FALSE, {{6024, 50}, {6024, 50}, {6027, 0}}},
        {2048, 2048, false, TRUE, {{6024, 50}, {6024, 100}, {6026, 0}}},
        {2000, 1000, false, FALSE, {{6024, 200}, {6027, 0}}},
        {1000, 0, true, TRUE, {{6026, 0}}},
        {0, 0, false, TRUE, {{6026, 0}}},
    };
    for (const auto& one : cases) {
        m_internet.body.assign(one.sent, 'x');
        m_internet.contentLength = one.told;
        m_internet.breaksOff = one.breaksOff;
        EXPECT_EQ(Fetch(), one.result) << one.sent << " of " << one.told;
        EXPECT_EQ(Content().size(), one.sent);
        EXPECT_EQ(MessagesOf(true), one.messages) << one.sent << " of " << one.told;
        EXPECT_EQ(MessagesOf(false).back().first, UINT{CZrHbInet::eMessage_Ended});
    }
    m_internet.status = "404";
    m_internet.body = "no such page";
    m_internet.contentLength = 12;
    EXPECT_EQ(Fetch(), TRUE);
    EXPECT_EQ(Content(), "no such page");
    EXPECT_THAT(Log(), HasSubstr("Failed to retrieve a HTTP 200 status, Status Code:404\\n"));
}

TEST_F(Download, AsksForCredentialsUntilTheUserGivesUp) {
    for (const char* status : {"401", "407"}) {
        m_internet.status = status;
        m_internet.dialogAnswers = {ERROR_INTERNET_FORCE_RETRY};
        m_internet.body = "the file";
        EXPECT_EQ(Fetch(), TRUE);
        EXPECT_EQ(Content(), "the file");

        m_internet.status = status;
        EXPECT_EQ(Fetch(), TRUE) << "what is left of the refusal, nothing, is the file";
        EXPECT_EQ(Content(), "");
        EXPECT_EQ(m_internet.OpenHandles(), 0u);
    }
    EXPECT_THAT(Log(), Not(HasSubstr("Status Code")));
}

TEST_F(Download, GoesOnlineFirst) {
    m_internet.isOffline = true;
    EXPECT_EQ(Fetch(), TRUE);
    EXPECT_THAT(Log(), HasSubstr("InternetGetConnectedState(INTERNET_CONNECTION_OFFLINE)"));
    EXPECT_THAT(Log(), Not(HasSubstr("returned FALSE")));
    m_internet.isConnected = false;
    EXPECT_EQ(Fetch(), TRUE) << "a machine without connection is tried all the same";
    EXPECT_THAT(Log(), HasSubstr("InternetGetConnectedState() returned FALSE"));
}

TEST_F(Download, StopsAtEachStep) {
    const struct {
        const char* during;
        UINT message;
        const char* last; // call before the handles are closed
    } cases[] = {
        {"GetConnectedState", CZrHbInet::eMessage_Failed, "GetConnectedState"},
        {"Open", CZrHbInet::eMessage_Failed, "Open"},
        {"QueryStatus", CZrHbInet::eMessage_Failed, "QueryStatus"},
        {"QueryLength", CZrHbInet::eMessage_Stopped, "Read"},
        {"Read", CZrHbInet::eMessage_Stopped, "Read"},
    };
    m_internet.body = "some bytes";
    for (const auto& one : cases) {
        ScriptedInternet internet;
        const platform::ScopedService<platform::Internet> installed(internet);
        internet.body = "some bytes";
        CZrHbInet stopping;
        internet.onCall = [&](const std::string& call) {
            if (call == one.during) stopping.StopDownloadFile();
        };
        // Constructed before the stop: constructing one withdraws it.
        CZrHbInet inet;
        g_messages.clear();
        EXPECT_EQ(inet.StartDownloadFile2(eAppGroup_2, "http://bank.test/", File(),
                                          CWnd::FromHandle(*m_window)),
                  TRUE);
        PumpUntil([&] { return !g_messages.empty(); }, "the final message");
        EXPECT_EQ(g_messages.back().first, one.message) << one.during;
        auto calls = internet.Calls();
        std::erase(calls, "Close");
        EXPECT_EQ(calls.back(), one.last);
        EXPECT_EQ(inet.DownloadFile("http://bank.test/", File()), FALSE) << "the stop stands";
    }
    EXPECT_EQ(Fetch(), TRUE) << "until the next object";
}

TEST_F(Download, TellsWhyAFileCannotBeWritten) {
    m_internet.body = std::string(1'000'000, 'x');
    m_home.WriteFile("directory/file", "");
    const std::pair<std::string, const char*> cases[] = {
        {m_home.Path("missing/file"), "Attempt to open file .*/missing/file with with error "},
        {m_home.Path("directory"), "Attempt to open file .*/directory with with error "},
        {"", "Attempt to open file  with with error "},
        {"/dev/full", "Attempt to write file /dev/full failed with error "},
    };
    for (const auto& [file, logged] : cases) {
        EXPECT_EQ(CZrHbInet().DownloadFile("http://bank.test/", CString(std::string_view(file))),
                  FALSE);
        EXPECT_THAT(Log(), testing::ContainsRegex(logged));
    }
}

TEST_F(Download, StartsWithAValidUrlOnly) {
    for (const char* url : {"", "list.pdf", "//bank.test/", "http://", "http://ba nk.test/", "x:y"})
        EXPECT_EQ(CZrHbInet().StartDownloadFile(url, File(), nullptr), FALSE) << url;
    EXPECT_THAT(m_internet.Calls(), IsEmpty());
}

TEST_F(Download, TellsAHiddenWindowNothing) {
    ShowWindow(*m_window, SW_HIDE);
    EXPECT_THAT(MessagesOf(true), IsEmpty());
    EXPECT_EQ(m_clock.TickCount(), 5000u);
    ShowWindow(*m_window, SW_SHOW);
    EXPECT_THAT(MessagesOf(true), ElementsAre(std::pair<UINT, LPARAM>(6026, 0)));
}

TEST_F(Download, StartsBesideAWorkerThatDoesNotEnd) {
    Gate gate;
    std::atomic<bool> isFirst{true};
    m_internet.onCall = [&](const std::string& call) {
        if (call == "OpenUrl" && isFirst.exchange(false)) gate.Wait();
    };
    m_internet.body = "file";
    const CString other(std::string_view(m_home.Path("other")));
    const auto startBoth = [&] {
        CZrHbInet inet;
        ASSERT_EQ(inet.StartDownloadFile("http://bank.test/1", File(), nullptr), TRUE);
        PumpUntil([&] { return !isFirst; }, "the first request");
        ASSERT_EQ(inet.StartDownloadFile("http://bank.test/2%64", other, nullptr), TRUE);
        EXPECT_THAT(Log(),
                    HasSubstr("WAIT_TIMEOUT by attempt to download file http://bank.test/2%64"));
        PumpUntil([&] { return m_home.ReadFile("other") == "file"; }, "the second file");
        gate.Open();
    };
    std::thread(startBoth).join(); // a thread ends after both of its workers
    EXPECT_EQ(Content(), "file");
}
