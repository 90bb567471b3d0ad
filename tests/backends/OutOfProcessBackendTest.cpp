// The out-of-process back-end over scripted browser applications: connecting, losing the browser,
// reading, collecting pages, new windows, dialogs of the browser.

#include <gmock/gmock.h>

#include <platform/Apartment.h>

#include "backends/BackendTest.h"
#include "backends/ZrHbIE2HttpGet.h"
#include "browser/common/BrowserEvents.h"
#include "support/FailingAutomation.h"
#include "support/ManualClock.h"
#include "support/ScriptedBrowser.h"
#include "support/TemporaryHome.h"
#include "support/TestWindow.h"

using namespace test_support;
using testing::ElementsAre;
using testing::IsEmpty;
using Navigation = ScriptedBrowser::Navigation;

namespace {

// Replaces the request when it has a URL to replace it by.
class ScriptedHooks final : public TrafficHooks {
public:
    CString url;
    std::vector<std::string> results;

    void PrepareRequest(CString& strUrl, const void*& pPostData, DWORD& nPostLen,
                        const char*& pszHeaders) override {
        if (url.IsEmpty()) return;
        strUrl = url;
        pPostData = "new";
        nPostLen = 2;
        pszHeaders = "X: 1";
    }
    void RecordResult(DWORD nCode, const CString& page, const CString& strErr) override {
        results.push_back(std::to_string(nCode) + "|" + std::string(page.View()) + "|" +
                          std::string(strErr.View()));
    }
};

class OutOfProcess : public BackendTest {
protected:
    TemporaryHome home;
    ManualClock clock;
    platform::ScopedService<platform::Clock> installedClock{clock};
    ScriptedApplication applications{4};
    ScriptedBrowser& browser = applications[0];
    ScriptedHooks traffic;
    CZrHbIE2HttpGet backend{2, traffic};

    CZrHbHttpGet& Backend() override { return backend; }
    static void Post(std::function<void()> work) {
        platform::Apartment::OfThisThread()->Post(std::move(work));
    }

    static void Before(ScriptedBrowser& at, ScriptedBrowser& source) {
        platform::RaiseBeforeNavigate2(at.Events(), source.Dispatch(), {});
    }
    static void Complete(ScriptedBrowser& at, ScriptedBrowser& source, const char* url) {
        platform::RaiseNavigateComplete2(at.Events(), source.Dispatch(), url);
        platform::RaiseDocumentComplete(at.Events(), source.Dispatch(), url);
    }
    static void NewWindow(ScriptedBrowser& at) {
        bool isCancelled = false;
        platform::RaiseNewWindow2(at.Events(), isCancelled);
    }
};

// A browser application whose window shows a dialog of the browser's own.
class OutOfProcessDialog : public OutOfProcess {
protected:
    const TestWindow main{"main", GetDesktopWindow()};
    const TestWindow dialog{"dialog", main};
    const TestWindow other{"other", GetDesktopWindow()};

    OutOfProcessDialog() {
        Connect();
        browser.window = main.Number();
        browser.moments = {{1, true}};
        EnableWindow(main, FALSE);
        SetForegroundWindow(other);
    }
};

} // namespace

TEST_F(OutOfProcess, ConnectsToAnInvisibleApplicationOrTellsWhatFailed) {
    const CString head = "Internal Error: Cannot Connect to IE(Version 2): ";
    using Call = FailingAutomation::Call;
    const std::pair<Call, const char*> failures[] = {
        {Call::initialize, "OleInitialize failed."},
        {Call::createInstance, "CoCreateInstance failed."}};
    for (const auto& [call, text] : failures) {
        FailingAutomation automation(call);
        EXPECT_EQ(backend.Connect(nullptr, strErr), 20u);
        EXPECT_EQ(strErr, head + text);
    }
    Connect();
    EXPECT_EQ(strErr, "");
    EXPECT_EQ(backend.Get_IWebBrowser2_ptr(strErr), &browser);
    EXPECT_THAT(browser.calls, IsEmpty());
    const std::string log = home.ReadFile("log/zrhttpbase3.log").value_or("");
    EXPECT_THAT(log, testing::ContainsRegex("ZrHbIE2HttpGet.*71.*Instantiate out process"));

    Connect(); // leaves the first one
    EXPECT_EQ(browser.Count("Quit"), 1);
    EXPECT_EQ(applications.References(0), 0u);
    backend.KeepThisFrameOpen();
    backend.Disconnect();
    EXPECT_EQ(applications[1].Count("Quit"), 0);
    EXPECT_EQ(applications.References(1), 0u);
    EXPECT_EQ(backend.Get_IWebBrowser2_ptr(strErr), nullptr);
    EXPECT_EQ(strErr, "Get_IWebBrowser2_ptr failed because: not connected.");
}

TEST_F(OutOfProcess, NavigatesWithWhatTheTrafficHooksLeave) {
    Connect();
    EXPECT_EQ(backend.Open("http://h/", strErr, "a=1", 0xFFFFFFFFu, nullptr, FALSE), 0u);
    traffic.url = "http://simulated/";
    EXPECT_EQ(Open(), 0u);
    const std::string form = "Content-Type: application/x-www-form-urlencoded\r\n";
    EXPECT_THAT(browser.navigations,
                ElementsAre(Navigation{"http://h/", 14, "a=1", form},
                            Navigation{"http://simulated/", 14, "ne", "X: 1\r\n"}));

    browser.failing = {"Navigate2"};
    for (const BOOL collect : {FALSE, TRUE})
        EXPECT_EQ(Open(collect), 23u);
    EXPECT_EQ(strErr, "Internal error: cannot navigate(!?)");
    EXPECT_FALSE(browser.Events().HasSinks());
    EXPECT_EQ(Read(), kIdle);
}

TEST_F(OutOfProcess, NoticesABrowserThatHasGoneAway) {
    for (const bool isRead : {true, false}) {
        const std::size_t index = applications.Created();
        Connect();
        EXPECT_EQ(Open(2), 0u);
        applications[index].failing = {"get_Visible"};
        if (isRead)
            EXPECT_EQ(Read(), kLost);
        else
            EXPECT_EQ(Open(), 27u);
        EXPECT_EQ(applications.References(index), 0u);
        EXPECT_EQ(Read(), kNotOpen);
    }
}

TEST_F(OutOfProcess, ReadsTheLiveDocumentAndRecordsWhatItReads) {
    const std::string partial = kLoading + std::string(" (6 bytes)");
    Connect();
    ASSERT_EQ(Open(), 0u);
    browser.SetSource("<html>");
    browser.moments = {{2, true}, {3, true}, {4, false}};
    EXPECT_EQ(Read(), kLoading);
    browser.failing = {"get_Busy"};
    EXPECT_TRUE(Read().starts_with("22: "));
    EXPECT_THAT(traffic.results, IsEmpty());

    browser.failing = {};
    browser.moments = {{3, true}, {4, false}};
    EXPECT_EQ(Read(), partial);
    EXPECT_EQ(browser.Count("Stop"), 0);
    EXPECT_EQ(Read(), "0: <html> of http://host/final");
    EXPECT_EQ(browser.Count("Stop"), 1);
    browser.document = nullptr;
    EXPECT_EQ(Read(), kNoDocument);
    EXPECT_THAT(traffic.results, ElementsAre("10|<html>|Read has not completed yet.", "0|<html>|",
                                             "22|<html>|Reading failed. (GetDocument failed.)"));
    browser.SetSource("bytes");
    EXPECT_EQ(ReadBytes(), "0: bytes of http://host/final");
    EXPECT_EQ(traffic.results.size(), 3u);
}

TEST_F(OutOfProcess, HandsOutCollectedPagesInTheOrderOfTheirCompletion) {
    Connect();
    ASSERT_EQ(Open(2), 0u);
    EXPECT_EQ(Read(), kIdle); // nothing has begun yet
    const auto frame = MakeObject<ScriptedBrowser>();
    frame->SetSource("frame");
    browser.SetSource("top");
    for (ScriptedBrowser* each : {&browser, frame.Get(), frame.Get()})
        Before(browser, *each);
    page = "old";
    EXPECT_EQ(Read(), kLoading);
    EXPECT_EQ(page, "");
    Complete(browser, *frame, "http://h/1");
    frame->document = nullptr;
    Complete(browser, *frame, "http://h/2");
    Complete(browser, browser, "http://h/");
    for (const char* collected :
         {"0: frame of http://h/1", "0:  of http://h/2", "0: top of http://h/", kIdle})
        EXPECT_EQ(Read(), collected);
    EXPECT_THAT(traffic.results, IsEmpty());
    EXPECT_EQ(ReadBytes(), "0: top of http://host/final"); // the live document
}

TEST_F(OutOfProcess, PopUpsOfACollectedPageStayInvisibleAndAreNotCollected) {
    Connect();
    ASSERT_EQ(Open(TRUE), 0u);
    NewWindow(browser);
    Before(applications[1], applications[1]);
    EXPECT_EQ(Read(), kIdle);
    Complete(applications[1], applications[1], "http://h/popup");
    EXPECT_EQ(Read(), kIdle);
    for (const std::size_t window : {0u, 1u})
        platform::RaiseOnVisible(applications[window].Events(), true);
    backend.PutVisible(2);
    EXPECT_EQ(browser.calls.back(), "put_Visible -1");
    platform::RaiseOnVisible(browser.Events(), true);
    EXPECT_EQ(browser.Count("put_Visible 0"), 2);
    EXPECT_EQ(applications[1].Count("put_Visible 0"), 1);
    backend.Close();
    EXPECT_EQ(applications.References(1), 0u);
    EXPECT_EQ(applications.References(0), 1u);
}

TEST_F(OutOfProcess, ARunOfCollectingEndsWithCloseOrTheNextOpen) {
    Connect();
    backend.Close(); // nothing has been opened
    EXPECT_EQ(browser.Count("Stop"), 0);
    for (const BOOL next : {TRUE, FALSE}) {
        ASSERT_EQ(Open(TRUE), 0u);
        Before(browser, browser);
        NewWindow(browser);
        ASSERT_EQ(Open(next), 0u);
        EXPECT_EQ(applications.References(applications.Created() - 1), 0u);
        EXPECT_EQ(browser.Events().HasSinks(), next != FALSE);
    }
    ASSERT_EQ(Open(TRUE), 0u);
    Before(browser, browser);
    EXPECT_EQ(Read(), kLoading);
    backend.Close();
    EXPECT_EQ(browser.Count("Stop"), 1);
    EXPECT_FALSE(browser.Events().HasSinks());
    EXPECT_EQ(Read(), kIdle);
    browser.failing = {"Events"}; // nothing could be collected
    EXPECT_EQ(Open(TRUE), 23u);
}

TEST_F(OutOfProcess, OpensInANewWindowAndWaitsUntilThatHasLoaded) {
    Connect();
    const TestWindow window;
    applications[1].window = window.Number();
    std::vector<std::string> steps;
    browser.during["Navigate2"] = [&] {
        Post([&] { NewWindow(browser); });
        Post([&] { Complete(applications[1], applications[1], "http://h/"); });
        Post([&] { steps.emplace_back("loaded"); });
    };
    backend.PrepareOpenInNewWindow();
    EXPECT_EQ(Open(), 0u);
    EXPECT_THAT(steps, ElementsAre("loaded"));
    EXPECT_EQ(browser.navigations.back().flags, 15);
    EXPECT_EQ(GetForegroundWindow(), window);
    EXPECT_EQ(applications[1].Count("Quit"), 0);
    EXPECT_EQ(applications.References(1), 0u);
    EXPECT_EQ(applications.References(0), 1u);
    for (const std::string& result : {Read(), ReadBytes()})
        EXPECT_EQ(result, kInNewWindow);

    browser.during.clear();
    browser.SetSource("plain");
    EXPECT_EQ(Open(), 0u);
    EXPECT_EQ(browser.navigations.back().flags, 14);
    EXPECT_EQ(Read(), "0: plain of http://host/final");
}

// Whichever of the two browsers ends, and whether or not it says so.
TEST_F(OutOfProcess, TheWaitForANewWindowEndsWithTheBrowser) {
    const auto quit = [&] { platform::RaiseOnQuit(browser.Events()); };
    const auto die = [&] { browser.failing.insert("get_Visible"); };
    const auto windowQuits = [&] { platform::RaiseOnQuit(applications[1].Events()); };
    const auto windowDies = [&] { applications[2].failing = {"get_Visible"}; };
    const auto open = [&](bool hasWindow, const std::function<void()>& end) {
        browser.during["Navigate2"] = [&, hasWindow, end] {
            if (hasWindow) Post([&] { NewWindow(browser); });
            Post([this, end] { clock.Advance(60'000), Post(end); });
        };
        backend.PrepareOpenInNewWindow();
        return Open();
    };
    Connect();
    EXPECT_EQ(open(false, quit), 0u);
    EXPECT_EQ(open(true, windowQuits), 0u);
    EXPECT_EQ(open(true, windowDies), 0u);
    EXPECT_EQ(Read(), kInNewWindow);
    EXPECT_EQ(open(false, die), 0u);
    EXPECT_EQ(Read(), kLost);
    for (const std::size_t each : {0u, 1u, 2u})
        EXPECT_EQ(applications.References(each), 0u);
}

TEST_F(OutOfProcess, ANewWindowThatCannotBeAskedForFails) {
    Connect();
    for (const char* call : {"Navigate2", "Events"}) {
        browser.failing = {call};
        backend.PrepareOpenInNewWindow();
        EXPECT_EQ(Open(), 23u);
        EXPECT_FALSE(browser.Events().HasSinks());
        EXPECT_EQ(applications.References(0), 1u);
    }
}

TEST_F(OutOfProcess, AMessageMayDisconnectDuringTheWait) {
    for (const bool hasWindow : {false, true}) {
        const std::size_t index = applications.Created();
        Connect();
        ScriptedBrowser& opener = applications[index];
        opener.during["Navigate2"] = [&] {
            if (hasWindow) Post([&] { NewWindow(opener); });
            Post([&] { backend.Disconnect(); });
        };
        backend.PrepareOpenInNewWindow();
        EXPECT_EQ(Open(), 21u);
        EXPECT_EQ(opener.Count("Quit"), 1);
        EXPECT_EQ(applications.References(index), 0u);
    }
}

// An event's callback is on the stack of the sink that the message's handler takes away.
TEST_F(OutOfProcess, AMessageHandledInAnEventMayEndCollecting) {
    Connect();
    ASSERT_EQ(Open(TRUE), 0u);
    browser.during["get_Document"] = [&] { backend.Disconnect(); };
    browser.SetSource("top");
    Complete(browser, browser, "http://h/");
    EXPECT_EQ(Read(), kNotOpen);
    EXPECT_EQ(applications.References(0), 0u);
}

TEST_F(OutOfProcessDialog, ComesToTheFrontAtOnceAndLaterAfterAPause) {
    ASSERT_EQ(Open(), 0u);
    EXPECT_EQ(GetForegroundWindow(), main);
    EXPECT_THAT(clock.Sleeps(), IsEmpty());
    const auto pausesWhileInFront = [&](HWND front) {
        SetForegroundWindow(front);
        const std::size_t before = clock.SleepCount();
        EXPECT_EQ(Read(), kLoading);
        EXPECT_EQ(GetForegroundWindow(), main);
        const auto all = clock.Sleeps();
        return std::vector<DWORD>(all.begin() + static_cast<std::ptrdiff_t>(before), all.end());
    };
    EXPECT_THAT(pausesWhileInFront(dialog), ElementsAre(300u));
    EXPECT_THAT(pausesWhileInFront(other), ElementsAre(500u));
    EXPECT_THAT(pausesWhileInFront(main), IsEmpty());
}

TEST_F(OutOfProcessDialog, IsLeftAloneWhileThereIsNoneOrItCannotBeFound) {
    const auto isInFrontAfterOpening = [&] {
        SetForegroundWindow(other);
        EXPECT_EQ(Open(), 0u);
        return GetForegroundWindow() == main;
    };
    EnableWindow(main, TRUE);
    EXPECT_FALSE(isInFrontAfterOpening());
    EnableWindow(main, FALSE);
    browser.failing = {"get_HWND"};
    EXPECT_FALSE(isInFrontAfterOpening());
    browser.failing.clear();
    browser.window = 0x7FFFFFF0;
    EXPECT_FALSE(isInFrontAfterOpening());
    browser.window = main.Number();
    EXPECT_TRUE(isInFrontAfterOpening());
    browser.moments = {{4, false}}; // complete: a dialog is no reason any more
    SetForegroundWindow(other);
    Read();
    EXPECT_EQ(GetForegroundWindow(), other);
}

TEST_F(OutOfProcessDialog, IsWaitedForWhenDisconnecting) {
    ASSERT_EQ(Open(), 0u);
    Post([&] { Post([&] { EnableWindow(main, TRUE); }); });
    backend.Disconnect();
    EXPECT_TRUE(IsWindowEnabled(main));
    EXPECT_EQ(browser.Count("Quit"), 1);

    Connect(); // and a message may disconnect meanwhile
    applications[1].window = main.Number();
    applications[1].moments = {{1, true}};
    EnableWindow(main, FALSE);
    Post([&] { backend.Connect(nullptr, strErr); });
    Post([&] { EnableWindow(main, TRUE); });
    backend.Disconnect();
    EXPECT_EQ(applications[1].Count("Quit"), 1);
}
