// The in-process back-end over a scripted browser: connecting, the navigation request, the
// readiness rule, its window.

#include <optional>

#include <ZrHbUHttpGet.h>
#include <platform/Apartment.h>
#include <platform/Window.h>

#include "backends/BackendTest.h"
#include "backends/ZrHbWebBrowserHttpGet.h"
#include "support/FailingAutomation.h"
#include "support/ManualClock.h"
#include "support/ScriptedBrowser.h"

using namespace test_support;
using Navigation = ScriptedBrowser::Navigation;

namespace {

class NoWindows final : public platform::WindowFactory {
public:
    HWND Create(const platform::WindowRequest&) override { return nullptr; }
};

class InProcessBackend : public BackendTest {
protected:
    ManualClock clock;
    platform::ScopedService<platform::Clock> installedClock{clock};
    ScriptedControl browser;
    std::optional<CZrHbWebBrowserHttpGet> backend{2};

    CZrHbHttpGet& Backend() override { return *backend; }
};

} // namespace

TEST_F(InProcessBackend, EachFailingStepOfConnectHasItsTextAndLeavesNoBrowser) {
    const CString head = "Internal Error: Cannot Connect to ";
    const auto connect = [&] {
        const DWORD result = backend->Connect(nullptr, strErr);
        CString strNone;
        EXPECT_EQ(backend->Get_IWebBrowser2_ptr(strNone), nullptr);
        EXPECT_EQ(strNone, "Get_IWebBrowser2_ptr failed because: not connected.");
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
        {2, nullptr, 0xFFFFFFFFu, "X: 1\r\n", ScriptedBrowser::kLeftOut, ScriptedBrowser::kLeftOut},
        {2, "", 0xFFFFFFFFu, "X: 1\r\n", ScriptedBrowser::kLeftOut, ScriptedBrowser::kLeftOut},
    };
    for (const Case& c : cases) {
        backend.emplace(c.version);
        Connect();
        EXPECT_EQ(backend->Open("http://h/\xFC", strErr, c.data, c.length, c.headers, FALSE), 0u);
        EXPECT_EQ(browser->navigations.back(),
                  (Navigation{"http://h/\xFC", 14, c.sent, c.sentHeaders}));
    }
}

TEST_F(InProcessBackend, ReadsByTheReadinessRule) {
    Connect();
    browser->SetSource("<html>");
    browser->moments = {{1, true}, {2, true}, {3, true}, {4, false}};
    for (int early = 0; early < 2; ++early)
        EXPECT_EQ(ReadBytes(), kLoading);
    EXPECT_EQ(ReadBytes(), kLoading + std::string(" (6 bytes)"));
    EXPECT_EQ(strUrl, "");
    EXPECT_EQ(ReadBytes(), "0: <html> of http://host/final");
}

TEST_F(InProcessBackend, ReportsWhatFailsWhileReading) {
    Connect();
    page = "old";
    browser->failing = {"get_ReadyState"};
    EXPECT_EQ(Read(), "22: Read failed (code 2).");
    browser->failing = {"get_Busy"};
    EXPECT_EQ(Read(), "22: Read failed (code 3).");
    browser->failing = {};
    EXPECT_EQ(Read(), kNoDocument);
    browser->isOffline = true;
    EXPECT_EQ(Read(), kOffline);
    browser->failing = {"get_Offline"};
    EXPECT_EQ(Read(), kNoDocument);
    EXPECT_EQ(page, "old");

    browser->failing = {"get_LocationURL"};
    browser->SetSource(std::string("n\0w", 3)); // text, but every byte of it
    strUrl = "kept";
    EXPECT_EQ(Read(), std::string("0: n\0w of kept", 14));
}

TEST_F(InProcessBackend, ItsWindowCarriesTheServerAndIsShownOnlyWhenAsked) {
    Connect();
    const HWND window = FindWindowA("LISTBOX", "Ihr Finanzinstitut online");
    ASSERT_TRUE(window);
    backend->Open("http://user:pw@host.test:81/path?q", strErr, nullptr, 0, nullptr, FALSE);
    EXPECT_EQ(AfxGetWindowText(window), "https://host.test");
    backend->Open("nonsense", strErr, nullptr, 0, nullptr, FALSE);
    EXPECT_EQ(AfxGetWindowText(window), "");
    EXPECT_FALSE(IsWindowVisible(window));

    backend->PutVisible(2);
    EXPECT_TRUE(IsWindowVisible(window));
    backend->PutVisible(FALSE);
    EXPECT_TRUE(IsWindowVisible(window));
    EXPECT_EQ(browser->Count("put_Visible -1"), 1);
    EXPECT_EQ(browser->Count("put_Visible 0"), 1);
    DestroyWindow(window);
}

TEST_F(InProcessBackend, AfterTheNewWindowMarkEveryOpenWaitsAndShowsTheWindow) {
    Connect();
    const HWND window = FindWindowA("LISTBOX", "Ihr Finanzinstitut online");
    backend->PrepareOpenInNewWindow();
    browser->moments = {{1, true}, {1, true}, {4, false}};
    for (int open = 1; open <= 2; ++open) {
        const DWORD before = clock.TickCount();
        EXPECT_EQ(Open(), 0u);
        EXPECT_EQ(clock.TickCount() - before, open == 1 ? 300u : 100u);
        EXPECT_EQ(browser->navigations.back().flags, 14);
        EXPECT_TRUE(IsWindowVisible(window));
        ShowWindow(window, SW_HIDE);
    }
    browser->moments = {{1, true}}; // never done: the wait is bounded
    EXPECT_EQ(Open(), 0u);
    DestroyWindow(window);
}

TEST_F(InProcessBackend, AFailingNavigationAndTheEndOfAConnection) {
    Connect();
    browser->failing = {"Navigate2"};
    EXPECT_EQ(Open(), 23u);
    EXPECT_EQ(strErr, "Internal error: cannot navigate(!?)");

    backend->KeepThisFrameOpen();
    browser->moments = {{1, true}, {4, false}};
    const DWORD before = clock.TickCount();
    Connect();
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
