// The control-hosting back-end over a scripted browser.

#include <gtest/gtest.h>

#include <ZrHbResultCodes.h>
#include <platform/Exceptions.h>
#include <platform/Prompt.h>
#include <platform/Window.h>

#include "backends/ZrHbIEHttpGet.h"
#include "support/FailingAutomation.h"
#include "support/ScriptedBrowser.h"

using namespace test_support;

namespace {

class RecordingPrompt final : public platform::Prompt {
public:
    std::vector<std::string> asked;
    int Ask(const CString& strText, UINT nType) override {
        asked.push_back(std::to_string(nType) + " " + strText.GetString());
        return IDOK;
    }
};

class ControlHostingBackend : public testing::Test {
protected:
    ScriptedControl browser;
    HWND parent =
        CreateWindowExA(0, "LISTBOX", "client", 0, 0, 0, 9, 9, nullptr, nullptr, nullptr, nullptr);
    CZrHbIEHttpGet backend{2};
    CString page;
    CString strErr = "old";
    CString strUrl;
    DWORD nLength = 99;

    ~ControlHostingBackend() override {
        backend.Disconnect();
        DestroyWindow(parent);
    }
    void Connect() { ASSERT_EQ(backend.Connect(parent, strErr), 0u); }
    DWORD Open(BOOL bKeepPageOpen = FALSE) {
        return backend.Open("http://h/", strErr, nullptr, 0, nullptr, bKeepPageOpen);
    }
    DWORD Read() { return backend.Read(page, strErr, nLength, strUrl); }
    // References that the back-end and its window hold on the control.
    ULONG References() {
        browser->AddRef();
        return browser->Release();
    }
};

} // namespace

TEST_F(ControlHostingBackend, AnswersBeforeConnectAndWhenItCannotConnect) {
    EXPECT_EQ(Open(), 21u);
    EXPECT_EQ(strErr, "Open failed because: not connected.");
    strUrl = "old";
    EXPECT_EQ(Read(), 25u);
    EXPECT_EQ(strErr, "Read: No previous Connect() and Open() or already Disconnected.");
    EXPECT_EQ(nLength, 0u);
    EXPECT_EQ(strUrl, "");

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
    EXPECT_EQ(Read(), 25u);
}

TEST_F(ControlHostingBackend, NavigatesHereOrOnceInANewWindow) {
    Connect();
    backend.PrepareOpenInNewWindow();
    browser->SetSource("<html>");
    for (const LONG flags : {15, 14}) {
        EXPECT_EQ(backend.Open("http://h/\xFC", strErr, "a=1", 2, "X: 1", FALSE), 0u);
        const auto& sent = browser->navigations.back();
        EXPECT_EQ(sent.url, "http://h/\xFC");
        EXPECT_EQ(sent.flags, flags);
        EXPECT_EQ(sent.postData, "a=");
        EXPECT_EQ(sent.headers, "X: 1\r\n");
        EXPECT_EQ(Read(), flags == 15 ? 22u : 0u);
        EXPECT_EQ(strErr, flags == 14 ? ""
                                      : "Reading failed (because after OpenInNewWindow() you "
                                        "cannot read the page).");
    }
    CZrHbIEHttpGet first(1);
    ASSERT_EQ(first.Connect(parent, strErr), 0u);
    first.Open("http://h/", strErr, "a", 0xFFFFFFFFu, nullptr, FALSE);
    EXPECT_EQ(browser->navigations.back().postData, std::string("a\0", 2));
}

TEST_F(ControlHostingBackend, ReadsInBothFormsAndStopsACompletePage) {
    Connect();
    Open();
    browser->SetSource("<html>");
    browser->moments = {{1, true}, {3, true}, {4, false}};
    EXPECT_EQ(Read(), 10u);
    EXPECT_EQ(strErr, "Read has not completed yet.");
    EXPECT_EQ(Read(), 10u);
    EXPECT_EQ(nLength, 6u);
    EXPECT_EQ(strUrl, "");
    EXPECT_EQ(browser->Count("Stop"), 0);
    EXPECT_EQ(Read(), 0u);
    EXPECT_EQ(page, "<html>");
    EXPECT_EQ(strErr, "");
    EXPECT_EQ(strUrl, "http://host/final");
    EXPECT_EQ(browser->Count("Stop"), 1);
    CByteBuffer bytes(1024, 256);
    EXPECT_EQ(backend.Read(bytes, strErr, nLength, strUrl), 0u);
    EXPECT_EQ(bytes.GetString(), "<html>");
}

TEST_F(ControlHostingBackend, APageThatStopsLoadingWithoutBeingCompleteFails) {
    struct Case {
        std::deque<BrowserMoment> moments;
        std::vector<DWORD> results;
    };
    const Case cases[] = {
        {{{1, false}, {1, false}, {1, false}}, {10, 10, 10}}, // never seen busy
        {{{1, true}, {1, false}, {1, false}}, {10, 22}},
        {{{1, true}, {3, false}, {4, false}}, {10, 0}}, // complete at the second look
        {{{1, true}, {1, false}, {2, true}, {2, false}}, {10, 10, 22}},
    };
    Connect();
    browser->SetSource("x");
    for (const Case& c : cases) {
        Open();
        browser->moments = c.moments;
        for (const DWORD result : c.results)
            EXPECT_EQ(Read(), result) << &c - cases;
        EXPECT_EQ(strErr == "Read failed.", c.results.back() == 22u) << strErr.GetString();
    }
}

TEST_F(ControlHostingBackend, AKeptPageGoesOnAndCanOnlyStallOnceBusyAgain) {
    Connect();
    Open(TRUE);
    browser->SetSource("x");
    browser->moments = {{4, true}, {4, false}, {1, false}, {1, true}, {1, false}};
    for (const DWORD result : {0u, 0u, 10u, 10u, 22u})
        EXPECT_EQ(Read(), result);
    EXPECT_EQ(strErr, "Read failed.");
    EXPECT_EQ(browser->Count("Stop"), 0);
}

TEST_F(ControlHostingBackend, TellsWhyThereIsNoDocument) {
    Connect();
    Open();
    EXPECT_EQ(Read(), 22u);
    EXPECT_EQ(strErr, "Reading failed. (GetDocument failed.)");
    browser->isOffline = true;
    EXPECT_EQ(Read(), 22u);
    EXPECT_EQ(strErr, "Reading failed because browser is offline.");
}

TEST_F(ControlHostingBackend, AFailingControlThrowsAndNothingIsLost) {
    const auto throws = [](const auto& call) {
        try {
            call();
        } catch (CException* exception) {
            exception->Delete();
            return true;
        }
        return false;
    };
    const ULONG before = References();
    browser->failureText = "broken";
    browser->failing = {"put_Offline"};
    EXPECT_TRUE(throws([&] { backend.Connect(parent, strErr); }));
    EXPECT_EQ(References(), before);
    EXPECT_EQ(Read(), 25u);
    browser->failing = {"Navigate2"};
    Connect();
    EXPECT_TRUE(throws([&] { Open(); }));
    browser->SetSource("x");
    browser->failing = {};
    Open();
    for (const char* call :
         {"get_ReadyState", "get_Busy", "get_Document", "Stop", "get_LocationURL"}) {
        browser->failing = {call};
        EXPECT_TRUE(throws([&] { Read(); })) << call;
    }
    browser->failing = {};
    EXPECT_EQ(Read(), 0u);
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
