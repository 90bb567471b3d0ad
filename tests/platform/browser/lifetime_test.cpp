// Stopping, quitting, going away in the middle; many at once; windows and visibility; the browser
// by dispatch identifiers.
#include <thread>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/browser/BrowserSink.h"
#include "platform/browser/TestBrowser.h"
#include "support/PumpUntil.h"
#include "support/TestServer.h"
#include "support/TestWindow.h"

namespace platform_test {
namespace {

using namespace test_support;
using namespace std::chrono_literals;
using testing::ElementsAre;

class Lifetime : public testing::Test {
protected:
    Lifetime() {
        Answer slow;
        slow.pieces = {"begin ", "end"};
        slow.pieceGate = m_gate;
        m_server.Set("/slow", slow);
        m_server.Set("/page", Html("page"));
        m_server.Set("/frames", Html("<iframe src=slow></iframe><iframe src=page></iframe>"));
        m_sink->Connect(*m_browser);
    }
    ~Lifetime() override {
        m_gate->Open();
        m_sink->Disconnect();
    }

    const std::shared_ptr<Gate> m_gate = std::make_shared<Gate>();
    TestServer m_server;
    TestBrowser m_browser;
    const CComPtr<BrowserSink> m_sink = MakeObject<BrowserSink>();
};

TEST_F(Lifetime, StopKeepsWhatHasArrived) {
    ASSERT_EQ(S_OK, m_browser.Navigate(m_server.Url("/slow")));
    m_browser.WaitForState(READYSTATE_INTERACTIVE);
    ASSERT_EQ(S_OK, m_browser->Stop());
    EXPECT_FALSE(m_browser.IsBusy());
    m_gate->Open();
    PumpFor(20ms);
    EXPECT_EQ(READYSTATE_INTERACTIVE, m_browser.State());
    EXPECT_EQ("begin ", m_browser.Source());
    m_browser.Load(m_server.Url("/page"));
    EXPECT_EQ("page", m_browser.Source());
}

TEST_F(Lifetime, ASecondNavigationEndsTheFirstSilently) {
    ASSERT_EQ(S_OK, m_browser.Navigate(m_server.Url("/frames")));
    PumpUntil([&] { return !m_server.Requests("/slow").empty(); }, "the slow frame");
    m_sink->events.clear();
    m_browser.Load(m_server.Url("/page"));
    m_gate->Open();
    PumpFor(20ms);
    EXPECT_THAT(m_sink->events, ElementsAre("before /page", "navigated /page", "complete /page"));
    EXPECT_EQ("page", m_browser.Source());
}

TEST_F(Lifetime, CancelledNavigationsAskNobody) {
    m_sink->cancelPath = "/page";
    m_browser.Load(m_server.Url("/page"));
    EXPECT_THAT(m_sink->events, ElementsAre("before /page"));
    EXPECT_EQ(READYSTATE_COMPLETE, m_browser.State());
    EXPECT_FALSE(m_browser.HasDocument());
    EXPECT_EQ("cancelled", m_browser.Status());
    EXPECT_TRUE(m_server.Requests().empty());
}

TEST_F(Lifetime, QuitDisconnects) {
    ASSERT_EQ(S_OK, m_browser.Navigate(m_server.Url("/slow")));
    m_browser.WaitForState(READYSTATE_INTERACTIVE);
    ASSERT_EQ(S_OK, m_browser->Quit());
    VARIANT_BOOL flag = VARIANT_FALSE;
    READYSTATE state = 0;
    CComPtr<IDispatch> object;
    CComBSTR text;
    EXPECT_EQ(RPC_E_DISCONNECTED, m_browser->get_Visible(&flag));
    EXPECT_EQ(RPC_E_DISCONNECTED, m_browser->get_ReadyState(&state));
    EXPECT_EQ(RPC_E_DISCONNECTED, m_browser->get_Document(&object));
    EXPECT_EQ(RPC_E_DISCONNECTED, m_browser->get_LocationURL(&text));
    EXPECT_EQ(RPC_E_DISCONNECTED, m_browser->Stop());
    EXPECT_EQ(RPC_E_DISCONNECTED, m_browser->Quit());
    EXPECT_EQ(RPC_E_DISCONNECTED, m_browser.Navigate(m_server.Url("/page")));
    PumpMessages();
    EXPECT_EQ("quit", m_sink->events.back());
}

TEST_F(Lifetime, SinksMayDoAnythingDuringAnEvent) {
    for (const char* event :
         {"before /frames", "navigated /frames", "frame before /page", "frame complete /page"}) {
        for (int what = 0; what < 4; ++what) {
            TestBrowser browser;
            const CComPtr<BrowserSink> sink = MakeObject<BrowserSink>();
            const CComPtr<BrowserSink> second = MakeObject<BrowserSink>();
            sink->Connect(*browser);
            second->Connect(*browser);
            bool isDone = false;
            sink->onEvent = [&](const std::string& raised) {
                if (raised != event || isDone) return;
                isDone = true;
                switch (what) {
                case 0:
                    EXPECT_EQ(S_OK, browser->Stop());
                    break;
                case 1:
                    EXPECT_EQ(S_OK, browser->Quit());
                    break;
                case 2:
                    EXPECT_EQ(S_OK, browser.Navigate(m_server.Url("/page")));
                    break;
                default:
                    second->Disconnect(), sink->Disconnect(), browser.Release();
                }
            };
            ASSERT_EQ(S_OK, browser.Navigate(m_server.Url("/frames")));
            PumpUntil([&] { return isDone; }, event);
            if (what == 2) {
                browser.WaitUntilDone();
                EXPECT_EQ("page", browser.Source());
            }
            PumpFor(5ms);
            if (what != 3) sink->Disconnect(), second->Disconnect();
        }
    }
}

TEST_F(Lifetime, MessagesMayBeServedDuringAnEvent) {
    m_gate->Open();
    m_sink->onEvent = [&](const std::string&) { PumpFor(5ms); };
    m_browser.Load(m_server.Url("/frames"));
    EXPECT_EQ("complete /frames", m_sink->events.back());
    EXPECT_EQ(9u, m_sink->events.size());
}

TEST_F(Lifetime, GoesAwayWhileLoading) {
    for (const bool isSeen : {false, true}) {
        TestBrowser browser;
        ASSERT_EQ(S_OK, browser.Navigate(m_server.Url("/frames")));
        if (isSeen)
            PumpUntil([&] { return browser.State() == READYSTATE_INTERACTIVE; }, "the page");
        browser.Release();
        PumpFor(5ms);
    }
}

TEST_F(Lifetime, TenAtOnceOnTenThreads) {
    m_gate->Open();
    std::vector<std::thread> threads;
    for (int index = 0; index < 10; ++index)
        threads.emplace_back([this, index] {
            TestBrowser browser;
            const std::string cookie = "n=" + std::to_string(index);
            browser.Load(m_server.Url("/set-cookie?" + cookie));
            for (int round = 0; round < 2; ++round) {
                browser.Load(m_server.Url("/frames"));
                browser.Load(m_server.Url("/echo"), "post=" + cookie, "X-Own: " + cookie + "\r\n");
                EXPECT_THAT(browser.Source(), testing::HasSubstr("Cookie: " + cookie + "\n"));
                EXPECT_THAT(browser.Source(), testing::HasSubstr("X-Own: " + cookie + "\n"));
                EXPECT_THAT(browser.Source(), testing::EndsWith("post=" + cookie));
            }
            if (index % 2 == 0) browser->Quit(); // the others just go
        });
    for (std::thread& thread : threads)
        thread.join();
}

TEST_F(Lifetime, BlankPage) {
    m_browser.Load("about:blank");
    EXPECT_EQ("", m_browser.Source());
    EXPECT_THAT(m_sink->events,
                ElementsAre("before about:blank", "navigated about:blank", "complete about:blank"));
}

TEST_F(Lifetime, NewWindowsGoToWhoeverTakesThem) {
    TestBrowser taker;
    ASSERT_EQ(S_OK, taker->get_Application(&m_sink->newWindow));
    ASSERT_EQ(S_OK, m_browser.Navigate(m_server.Url("/echo"), "data", "X-Own: 1\r\n", 15));
    PumpUntil([&] { return taker.HasDocument() && !taker.IsBusy(); }, "the window");
    EXPECT_THAT(taker.Source(), testing::EndsWith("data"));
    EXPECT_THAT(m_sink->events, ElementsAre("new window"));
    EXPECT_EQ(READYSTATE_UNINITIALIZED, m_browser.State());
    m_sink->newWindow->Release();
    m_sink->newWindow = nullptr;
    ASSERT_EQ(S_OK, m_browser.Navigate(m_server.Url("/page"), "", "", 15));
    PumpUntil([&] { return !m_server.Requests("/page").empty(); }, "a window of its own");
}

TEST_F(Lifetime, VisibilityAndHostWindow) {
    ASSERT_EQ(S_OK, m_browser->put_Visible(VARIANT_TRUE));
    ASSERT_EQ(S_OK, m_browser->put_Visible(VARIANT_TRUE));
    EXPECT_TRUE(m_sink->events.empty()); // only while messages are served
    PumpMessages();
    EXPECT_THAT(m_sink->events, ElementsAre("visible 1"));
    LONG_PTR window = 1;
    EXPECT_EQ(S_OK, m_browser->get_HWND(&window));
    EXPECT_EQ(0, window);
    const TestWindow host;
    CComPtr<IUnknown> container;
    ASSERT_EQ(S_OK, AtlAxAttachControl(m_browser.Get(), host, &container));
    EXPECT_EQ(S_OK, m_browser->get_HWND(&window));
    EXPECT_EQ(host.Number(), window);
}

TEST_F(Lifetime, MembersByDispatchIdentifier) {
    const auto invoke = [&](DISPID member, WORD kind, VARIANT* pResult) {
        return m_browser->Invoke(member, IID{}, 0, kind, nullptr, pResult, nullptr, nullptr);
    };
    m_browser.Load("about:blank");
    const std::pair<DISPID, VARTYPE> properties[] = {{DISPID_READYSTATE, VT_I4},
                                                     {DISPID_WB_BUSY, VT_BOOL},
                                                     {DISPID_WB_DOCUMENT, VT_DISPATCH},
                                                     {DISPID_WB_APPLICATION, VT_DISPATCH},
                                                     {DISPID_WB_LOCATIONURL, VT_BSTR},
                                                     {DISPID_WB_STATUSTEXT, VT_BSTR},
                                                     {DISPID_WB_OFFLINE, VT_BOOL},
                                                     {DISPID_WB_VISIBLE, VT_BOOL},
                                                     {DISPID_WB_HWND, VT_I4}};
    for (const auto& [member, type] : properties) {
        COleVariant result;
        EXPECT_EQ(S_OK, invoke(member, DISPATCH_PROPERTYGET, &result)) << member;
        EXPECT_EQ(type, result.vt) << member;
        EXPECT_TRUE(member != DISPID_READYSTATE || result.lVal == READYSTATE_COMPLETE);
    }
    EXPECT_EQ(DISP_E_MEMBERNOTFOUND, invoke(12345, DISPATCH_METHOD, nullptr));
    EXPECT_EQ(S_OK, invoke(DISPID_WB_QUIT, DISPATCH_METHOD, nullptr));
}

} // namespace
} // namespace platform_test
