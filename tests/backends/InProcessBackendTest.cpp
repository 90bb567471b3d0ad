// The in-process back-end over a scripted browser: connecting, the navigation request, the
// readiness rule, its window.

#include <gtest/gtest.h>

#include <ZrHbResultCodes.h>
#include <ZrHbUHttpGet.h>
#include <platform/Apartment.h>
#include <platform/Window.h>

#include "backends/ZrHbWebBrowserHttpGet.h"
#include "support/FailingAutomation.h"
#include "support/ManualClock.h"
#include "support/ScriptedBrowser.h"

using namespace test_support;

namespace {

class NoWindows final : public platform::WindowFactory {
public:
    HWND Create(const platform::WindowRequest&) override { return nullptr; }
};

// A connected back-end of the given connect version.
class InProcessBackend : public testing::Test {
protected:
    ManualClock clock;
    platform::ScopedService<platform::Clock> installedClock{clock};
    ScriptedControl browser;
    CString strErr;
    CString strUrl;
    DWORD nLength = 99;

    std::unique_ptr<CZrHbWebBrowserHttpGet> Connected(DWORD version = 2) {
        auto backend = std::make_unique<CZrHbWebBrowserHttpGet>(version);
        EXPECT_EQ(backend->Connect(nullptr, strErr), 0u);
        return backend;
    }
};

} // namespace

TEST_F(InProcessBackend, AnswersWithTheNotConnectedResultsBeforeConnect) {
    CZrHbWebBrowserHttpGet backend(2);
    CString page = "old";
    EXPECT_EQ(backend.Open("http://h/", strErr, nullptr, 0, nullptr, FALSE), 21u);
    EXPECT_EQ(strErr, "Open failed because: not connected.");
    EXPECT_EQ(backend.Read(page, strErr, nLength, strUrl), 25u);
    EXPECT_EQ(strErr, "Read: No previous Connect() and Open() or already Disconnected.");
    EXPECT_EQ(page, "old");
    EXPECT_EQ(nLength, 0u);
    EXPECT_EQ(backend.Get_IWebBrowser2_ptr(strErr), nullptr);
    EXPECT_EQ(strErr, "Get_IWebBrowser2_ptr failed because: not connected.");
    backend.Close();
    backend.Disconnect();
    backend.PutVisible(TRUE);
    EXPECT_TRUE(browser->calls.empty());
}

TEST_F(InProcessBackend, EachFailingStepOfConnectHasItsTextAndLeavesNoBrowser) {
    const CString head = "Internal Error: Cannot Connect to ";
    CZrHbWebBrowserHttpGet backend(2);
    const auto connect = [&] {
        const DWORD result = backend.Connect(nullptr, strErr);
        CString ignored;
        EXPECT_EQ(backend.Get_IWebBrowser2_ptr(ignored), nullptr);
        return result;
    };
    using Call = FailingAutomation::Call;
    const std::pair<Call, const char*> failures[] = {
        {Call::initialize, "In-Process WebBrowser control: OleInitialize failed"},
        {Call::createInstance, "in-process WebBrowser control: AtlAxAttachControl failed"},
        {Call::attachControl, "in-process WebBrowser control: AtlAxAttachControl failed"},
    };
    for (const auto& [call, text] : failures) {
        FailingAutomation automation(call);
        EXPECT_EQ(connect(), 20u);
        EXPECT_EQ(strErr, head + text);
    }
    NoWindows windows;
    platform::ScopedService<platform::WindowFactory> installed(windows);
    EXPECT_EQ(connect(), 20u);
    EXPECT_EQ(strErr, head + "in-process WebBrowser control: CreateWindow failed");
}

TEST_F(InProcessBackend, SendsAPostTextByConnectVersionAndHeadersOnlyWithPostData) {
    struct Case {
        DWORD version;
        const char* data;
        DWORD length;
        const char* headers;
        std::string sent;
        std::string sentHeaders;
    };
    const std::string form = "Content-Type: application/x-www-form-urlencoded\r\n";
    const Case cases[] = {
        {2, "a=1", 0xFFFFFFFFu, nullptr, "a=1", form},
        {0, "a=1", 0xFFFFFFFFu, nullptr, std::string("a=1\0", 4), form},
        {0, "a\0b", 3, "X: 1\r\n\r\n", std::string("a\0b", 3), "X: 1\r\n"},
        {2, "a=1", 2, "X: \xFC\r\nY: 2", "a=", "X: \xFC\r\nY: 2\r\n"},
    };
    for (const Case& c : cases) {
        const auto backend = Connected(c.version);
        EXPECT_EQ(backend->Open("http://h/\xFC", strErr, c.data, c.length, c.headers, FALSE), 0u);
        const auto& sent = browser->navigations.back();
        EXPECT_EQ(sent.url, "http://h/\xFC");
        EXPECT_EQ(sent.flags, 14);
        EXPECT_EQ(sent.postData, c.sent);
        EXPECT_EQ(sent.headers, c.sentHeaders);
    }
    const auto backend = Connected();
    const auto isPlain = [&](const void* data, DWORD length, const char* headers) {
        backend->Open("http://h/", strErr, data, length, headers, FALSE);
        const auto& sent = browser->navigations.back();
        return !sent.hasPostData && !sent.hasHeaders;
    };
    EXPECT_TRUE(isPlain(nullptr, 0xFFFFFFFFu, "X: 1\r\n"));
    EXPECT_TRUE(isPlain("", 0xFFFFFFFFu, "X: 1\r\n"));
}

TEST_F(InProcessBackend, ReadsByTheReadinessRule) {
    const auto backend = Connected();
    browser->SetSource("<html>");
    browser->moments = {{1, true}, {2, true}, {3, true}, {4, false}};
    CByteBuffer page(1024, 256);
    const auto read = [&] { return backend->Read(page, strErr, nLength, strUrl); };
    for (int early = 0; early < 2; ++early) {
        EXPECT_EQ(read(), 10u);
        EXPECT_EQ(strErr, "Read has not completed yet.");
        EXPECT_EQ(nLength, 0u);
    }
    EXPECT_EQ(read(), 10u);
    EXPECT_EQ(nLength, 6u);
    EXPECT_EQ(strUrl, "");
    EXPECT_EQ(read(), 0u);
    EXPECT_EQ(page.GetString(), "<html>");
    EXPECT_EQ(strErr, "");
    EXPECT_EQ(strUrl, "http://host/final");
}

TEST_F(InProcessBackend, ReportsWhatFailsWhileReading) {
    const auto backend = Connected();
    CString page = "old";
    const auto read = [&] { return backend->Read(page, strErr, nLength, strUrl); };
    browser->failing = {"get_ReadyState"};
    EXPECT_EQ(read(), 22u);
    EXPECT_EQ(strErr, "Read failed (code 2).");
    browser->failing = {"get_Busy"};
    EXPECT_EQ(read(), 22u);
    EXPECT_EQ(strErr, "Read failed (code 3).");
    browser->failing = {};
    EXPECT_EQ(read(), 22u);
    EXPECT_EQ(strErr, "Reading failed. (GetDocument failed.)");
    browser->isOffline = true;
    EXPECT_EQ(read(), 22u);
    EXPECT_EQ(strErr, "Reading failed because browser is offline.");
    browser->failing = {"get_Offline"};
    EXPECT_EQ(read(), 22u);
    EXPECT_EQ(strErr, "Reading failed. (GetDocument failed.)");
    EXPECT_EQ(page, "old");

    browser->failing = {"get_LocationURL"};
    browser->SetSource("new");
    strUrl = "kept";
    EXPECT_EQ(read(), 0u);
    EXPECT_EQ(page, "new");
    EXPECT_EQ(strUrl, "kept");
}

TEST_F(InProcessBackend, ItsWindowCarriesTheServerAndIsShownOnlyWhenAsked) {
    const auto backend = Connected();
    const HWND window = FindWindowA("LISTBOX", "Ihr Finanzinstitut online");
    ASSERT_TRUE(window);
    backend->Open("http://user:pw@host.test:81/path?q", strErr, nullptr, 0, nullptr, FALSE);
    EXPECT_EQ(AfxGetWindowText(window), "https://host.test");
    backend->Open("nonsense", strErr, nullptr, 0, nullptr, FALSE);
    EXPECT_EQ(AfxGetWindowText(window), "");
    EXPECT_FALSE(IsWindowVisible(window));

    backend->PutVisible(TRUE);
    EXPECT_TRUE(IsWindowVisible(window));
    backend->PutVisible(FALSE);
    EXPECT_TRUE(IsWindowVisible(window));
    EXPECT_EQ(browser->Count("put_Visible -1"), 1);
    EXPECT_EQ(browser->Count("put_Visible 0"), 1);
    DestroyWindow(window);
}

TEST_F(InProcessBackend, AfterTheNewWindowMarkEveryOpenWaitsAndShowsTheWindow) {
    const auto backend = Connected();
    const HWND window = FindWindowA("LISTBOX", "Ihr Finanzinstitut online");
    backend->PrepareOpenInNewWindow();
    browser->moments = {{1, true}, {1, true}, {4, false}};
    for (int open = 1; open <= 2; ++open) {
        const DWORD before = clock.TickCount();
        EXPECT_EQ(backend->Open("http://h/", strErr, nullptr, 0, nullptr, FALSE), 0u);
        EXPECT_EQ(clock.TickCount() - before, open == 1 ? 300u : 100u);
        EXPECT_EQ(browser->navigations.back().flags, 14);
        EXPECT_TRUE(IsWindowVisible(window));
        ShowWindow(window, SW_HIDE);
    }
    browser->moments = {{1, true}}; // never done: the wait is bounded
    EXPECT_EQ(backend->Open("http://h/", strErr, nullptr, 0, nullptr, FALSE), 0u);
    DestroyWindow(window);
}

TEST_F(InProcessBackend, AFailingNavigationAndTheEndOfAConnection) {
    auto backend = Connected();
    browser->failing = {"Navigate2"};
    EXPECT_EQ(backend->Open("http://h/", strErr, nullptr, 0, nullptr, FALSE), 23u);
    EXPECT_EQ(strErr, "Internal error: cannot navigate(!?)");

    backend->KeepThisFrameOpen();
    browser->moments = {{1, true}, {4, false}};
    const DWORD before = clock.TickCount();
    EXPECT_EQ(backend->Connect(nullptr, strErr), 0u);
    EXPECT_EQ(clock.TickCount() - before, 200u);
    EXPECT_EQ(browser->Count("Stop"), 1);
    EXPECT_EQ(browser->Count("Quit"), 1);
    backend->Disconnect();
    backend->Disconnect();
    EXPECT_EQ(browser->Count("Quit"), 2);
}

// The waits serve messages, and the client's window may be closed just then.
TEST_F(InProcessBackend, AMessageMayDisconnectTheGetterWhileItWaits) {
    CZrHbUHttpGet getter(eAppGroup_2);
    const auto connect = [&] {
        getter.ConnectV3(nullptr, strErr, CZrHbUHttpGet::eVisible,
                         CZrHbUHttpGet::eConnectWith_InternetExplorer, 0, "", "", 1, 1);
        platform::Apartment::OfThisThread()->Post([&] { getter.Disconnect(0); });
    };
    connect();
    getter.Disconnect(0);
    EXPECT_EQ(browser->Count("Quit"), 1);
    connect();
    EXPECT_EQ(getter.OpenInNewWindow("http://h/", strErr), 21u);
    EXPECT_EQ(browser->Count("Quit"), 2);
    EXPECT_FALSE(getter.IsConnected());
}
