// The control-hosting back-end over a scripted browser.

#include <platform/Prompt.h>

#include "backends/BackendTest.h"
#include "backends/ZrHbIEHttpGet.h"
#include "support/FailingAutomation.h"
#include "support/ScriptedBrowser.h"
#include "support/TestWindow.h"
#include "support/ThrownBy.h"

using namespace test_support;
using Navigation = ScriptedBrowser::Navigation;

namespace {

class RecordingPrompt final : public platform::Prompt {
public:
    std::vector<std::string> asked;
    int Ask(const CString& strText, UINT nType) override {
        asked.push_back(std::to_string(nType) + " " + strText.GetString());
        return IDOK;
    }
};

class ControlHostingBackend : public BackendTest {
protected:
    ScriptedControl browser;
    TestWindow parent;
    CZrHbIEHttpGet backend{2};

    ~ControlHostingBackend() override { backend.Disconnect(); }
    CZrHbHttpGet& Backend() override { return backend; }
    void Connect() { BackendTest::Connect(parent); }
    // References that the back-end and its window hold on the control.
    ULONG References() {
        browser->AddRef();
        return browser->Release();
    }
};

} // namespace

TEST_F(ControlHostingBackend, TellsWhyItCannotConnect) {
    EXPECT_EQ(backend.Connect(nullptr, strErr), 20u);
    EXPECT_EQ(strErr,
              "Cannot connect to Internet Explorer. (Internal Error: GetDummyCWnd failed!?!)");
    FailingAutomation automation(FailingAutomation::Call::createInstance);
    EXPECT_EQ(backend.Connect(parent, strErr), 20u);
    EXPECT_EQ(strErr, "Cannot connect to Internet Explorer.");
    EXPECT_EQ(Open(), 21u);
}

TEST_F(ControlHostingBackend, ConnectsOnlineAndLetsGoOfTheControlAtTheEnd) {
    const ULONG before = References();
    browser->isOffline = true;
    Connect();
    EXPECT_EQ(strErr, "");
    EXPECT_FALSE(browser->isOffline);
    const ULONG connected = References();
    Connect(); // again: the first control goes
    EXPECT_EQ(References(), connected);
    backend.Close();
    backend.Disconnect();
    EXPECT_EQ(References(), before);
    EXPECT_EQ(browser->Count("Stop"), 0);
    EXPECT_EQ(browser->Count("Quit"), 0);
    Connect();
    DestroyWindow(parent); // the control goes with it
    backend.Disconnect();
    EXPECT_EQ(References(), before);
}

TEST_F(ControlHostingBackend, NavigatesHereOrOnceInANewWindow) {
    Connect();
    backend.PrepareOpenInNewWindow();
    browser->SetSource("<html>");
    for (const LONG flags : {15, 14}) {
        EXPECT_EQ(backend.Open("http://h/\xFC", strErr, "a=1", 2, "X: 1", FALSE), 0u);
        EXPECT_EQ(browser->navigations.back(),
                  (Navigation{"http://h/\xFC", flags, "a=", "X: 1\r\n"}));
        EXPECT_EQ(Read(), flags == 15 ? kInNewWindow : "0: <html> of http://host/final");
    }
    CZrHbIEHttpGet first(1);
    ASSERT_EQ(first.Connect(parent, strErr), 0u);
    first.Open("http://h/", strErr, "a", 0xFFFFFFFFu, nullptr, FALSE);
    EXPECT_EQ(browser->navigations.back().postData, std::string("a\0", 2));
}

TEST_F(ControlHostingBackend, ReadsTheGrowingPageAndStopsTheCompleteOne) {
    Connect();
    Open();
    browser->SetSource("<html>");
    browser->moments = {{1, true}, {3, true}, {4, false}};
    EXPECT_EQ(Read(), kLoading);
    EXPECT_EQ(Read(), kLoading + std::string(" (6 bytes)"));
    EXPECT_EQ(strUrl, "");
    EXPECT_EQ(browser->Count("Stop"), 0);
    EXPECT_EQ(Read(), "0: <html> of http://host/final");
    EXPECT_EQ(browser->Count("Stop"), 1);
}

TEST_F(ControlHostingBackend, APageThatStopsLoadingWithoutBeingCompleteFails) {
    struct Case {
        std::deque<BrowserMoment> moments;
        std::vector<std::string> results;
    };
    const std::string loading = kLoading;
    const std::string complete = "0: x of http://host/final";
    const Case cases[] = {
        {{{1, false}, {1, false}}, {loading, loading}}, // never seen busy
        {{{1, true}, {1, false}, {1, false}}, {loading, kReadFailed}},
        {{{1, true}, {3, false}, {4, false}}, {loading, complete}}, // at the second look
        {{{1, true}, {1, false}, {2, true}, {2, false}}, {loading, loading, kReadFailed}},
    };
    Connect();
    browser->SetSource("x");
    for (const Case& c : cases) {
        Open();
        browser->moments = c.moments;
        for (const std::string& result : c.results)
            EXPECT_EQ(Read(), result) << &c - cases;
    }
}

TEST_F(ControlHostingBackend, AKeptPageGoesOnAndCanOnlyStallOnceBusyAgain) {
    Connect();
    Open(2);
    browser->SetSource("x");
    browser->moments = {{4, true}, {4, false}, {1, false}, {1, true}, {1, false}};
    const char* const complete = "0: x of http://host/final";
    for (const std::string result : {complete, complete, kLoading, kLoading, kReadFailed})
        EXPECT_EQ(Read(), result);
    EXPECT_EQ(browser->Count("Stop"), 0);
}

TEST_F(ControlHostingBackend, TellsWhyThereIsNoDocument) {
    Connect();
    Open();
    EXPECT_EQ(Read(), kNoDocument);
    browser->isOffline = true;
    EXPECT_EQ(Read(), kOffline);
}

TEST_F(ControlHostingBackend, AFailingControlThrowsAndNothingIsLost) {
    const ULONG before = References();
    browser->failureText = "broken";
    browser->failing = {"put_Offline"};
    EXPECT_EQ(ThrownBy([&] { backend.Connect(parent, strErr); }), "broken");
    EXPECT_EQ(References(), before);
    EXPECT_EQ(Read(), kNotOpen);
    browser->failing = {"Navigate2"};
    Connect();
    EXPECT_EQ(ThrownBy([&] { Open(); }), "broken");
    browser->SetSource("x");
    browser->failing = {};
    Open();
    for (const char* call :
         {"get_ReadyState", "get_Busy", "get_Document", "Stop", "get_LocationURL"}) {
        browser->failing = {call};
        EXPECT_EQ(ThrownBy([&] { Read(); }), "broken") << call;
    }
    browser->failing = {};
    EXPECT_EQ(Read(), "0: x of http://host/final");
    backend.Disconnect();
    EXPECT_EQ(References(), before);
}

TEST_F(ControlHostingBackend, WhatOnlyAVisibleBrowserCanDoIsAnsweredWithAWarning) {
    RecordingPrompt prompt;
    platform::ScopedService<platform::Prompt> installed(prompt);
    const std::string end = "cannot be used with eConnectWith_InternetExplorer and eInvisible !";
    for (int connected = 0; connected < 2; ++connected) {
        EXPECT_EQ(backend.Get_IWebBrowser2_ptr(strErr), nullptr);
        EXPECT_EQ(strErr, ("Get_IWebBrowser2_ptr " + end).c_str());
        Connect();
    }
    backend.PutVisible(TRUE);
    backend.KeepThisFrameOpen();
    EXPECT_EQ(prompt.asked,
              (std::vector<std::string>{"0 Warning: CZrHbIEHttpGet: PutVisible() " + end,
                                        "0 Warning: CZrHbIEHttpGet: KeepThisFrameOpen() " + end}));
    EXPECT_EQ(browser->Count("put_Visible -1"), 0);
}
