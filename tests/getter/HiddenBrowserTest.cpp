// The getter with the browser that the user never sees: the builtin engine against a server.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <ZrHbUHttpGet.h>
#include <platform/Exceptions.h>
#include <platform/Window.h>

#include "support/FailingAutomation.h"
#include "support/ScriptedBrowser.h"
#include "support/TemporaryHome.h"
#include "support/TestServer.h"

using namespace test_support;
using testing::HasSubstr;

namespace {

class HiddenBrowser : public testing::Test {
protected:
    TemporaryHome home;
    TestServer server;
    HWND client =
        CreateWindowExA(0, "LISTBOX", "client", 0, 0, 0, 9, 9, nullptr, nullptr, nullptr, nullptr);
    CZrHbUHttpGet getter{eAppGroup_2};
    CString strErr;
    CString strUrl;
    CString page;

    ~HiddenBrowser() override {
        getter.Disconnect(0);
        DestroyWindow(client);
    }
    DWORD Connect(HWND parent) {
        return getter.ConnectV3(parent, strErr, CZrHbUHttpGet::eInvisible,
                                CZrHbUHttpGet::eConnectWith_InternetExplorer, 0, "", "", 0, 0);
    }
    DWORD Read() {
        return getter.BusyRead(page, strErr, strUrl, 30'000, FALSE, 0, nullptr, nullptr);
    }
    DWORD Fetch(const std::string& path) {
        const DWORD result = getter.Open(server.Url(path).c_str(), strErr, FALSE);
        return result ? result : Read();
    }
};

} // namespace

TEST_F(HiddenBrowser, ReadsPagesPostsAndFrames) {
    ASSERT_EQ(Connect(GetDesktopWindow()), 0u);
    server.Set("/", Html("<p>page"));
    server.Set("/frames", Html("<frameset><frame src='/inner'></frameset>"));
    server.Set("/inner", Html("inner"));
    server.Set("/moved", Redirect(302, "/"));
    EXPECT_EQ(Fetch("/moved"), 0u);
    EXPECT_EQ(page, "<p>page");
    EXPECT_EQ(strUrl, server.Url("/").c_str());
    EXPECT_EQ(Fetch("/frames"), 0u);
    EXPECT_EQ(page, "<frameset><frame src='/inner'></frameset>");
    EXPECT_EQ(server.Requests("/inner").size(), 1u);
    EXPECT_EQ(getter.Open(server.Url("/echo").c_str(), strErr, "a=1", "X-Own: 1", FALSE), 0u);
    EXPECT_EQ(Read(), 0u);
    EXPECT_EQ(server.Requests("/echo").at(0).body, "a=1");
    EXPECT_THAT(std::string(page.View()), HasSubstr("X-Own: 1"));
    EXPECT_EQ(Fetch("/missing"), 0u) << "an error page is a page";
}

TEST_F(HiddenBrowser, SaysWhatCannotBeReadAndGoesOn) {
    EXPECT_EQ(Connect(nullptr), 20u);
    ASSERT_EQ(Connect(client), 0u);
    EXPECT_EQ(getter.Open("http://127.0.0.1:1/", strErr, FALSE), 0u);
    EXPECT_EQ(Read(), 22u);
    EXPECT_EQ(strErr, "Reading failed. (GetDocument failed.)");
    server.Set("/", Html("page"));
    EXPECT_EQ(Fetch("/"), 0u);
    // A navigation that cannot even start is the control's failure, and leaves by exception.
    const auto openMalformed = [&] { return getter.Open("http://[", strErr, FALSE); };
    EXPECT_THROW(
        try { openMalformed(); } catch (COleDispatchException* exception) {
            EXPECT_FALSE(exception->m_strDescription.IsEmpty());
            exception->Delete();
            throw 1;
        },
        int);
    EXPECT_EQ(Fetch("/"), 0u);
    DestroyWindow(client); // the control goes with its parent
    getter.Disconnect(0);
    EXPECT_EQ(Fetch("/"), 21u);
}

TEST_F(HiddenBrowser, AControlThatFailsWhileConnectingIsNotConnected) {
    ScriptedControl control;
    control->failing = {"put_Offline"};
    control->failureText = "no network";
    EXPECT_EQ(Connect(client), 23u);
    EXPECT_EQ(strErr, "Connect (to Internet Explorer) failed because of an COleDispatchException! "
                      "(no network)");
}
