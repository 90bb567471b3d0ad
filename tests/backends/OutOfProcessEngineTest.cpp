// The out-of-process back-end behind the getter, over the builtin engine and a real server.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <ZrHbUHttpGet.h>

#include "support/TemporaryHome.h"
#include "support/TestServer.h"

using namespace test_support;

namespace {

class OutOfProcessEngine : public testing::Test {
protected:
    TemporaryHome home;
    ScopedVariable engine{"ZRHTTP_APPLICATION", "builtin"};
    ScopedVariable system{"ZRHTTP_LEGACY_SYSTEM", "1"}; // where a page may open out of process
    TestServer server;
    CZrHbUHttpGet getter{eAppGroup_2};
    CString page;
    CString strErr;
    CString strUrl;

    OutOfProcessEngine() {
        EXPECT_EQ(getter.ConnectV2(nullptr, strErr, CZrHbUHttpGet::eVisible,
                                   CZrHbUHttpGet::eConnectWith_InternetExplorer, 0, ""),
                  0u);
    }
    CString Url(const char* path) const { return CString(server.Url(path)); }
    DWORD BusyRead() {
        return getter.BusyRead(page, strErr, strUrl, 60'000, FALSE, 60'000, nullptr, nullptr);
    }
};

} // namespace

TEST_F(OutOfProcessEngine, CollectsAPageAndItsFrames) {
    const std::string top = "<iframe src=1></iframe><iframe src=2></iframe>";
    server.Set("/", Html(top));
    server.Set("/1", Html("one"));
    server.Set("/2", Html("two"));
    ASSERT_EQ(getter.Open(Url("/"), strErr, TRUE), 0u);
    std::vector<std::string> pages;
    for (int document = 0; document < 3; ++document) {
        ASSERT_EQ(BusyRead(), 0u) << strErr.GetString();
        pages.emplace_back((strUrl + " " + page).View());
    }
    EXPECT_EQ(pages.back(), server.Url("/") + " " + top);
    EXPECT_THAT(pages,
                testing::IsSupersetOf({server.Url("/1") + " one", server.Url("/2") + " two"}));
    DWORD nLength = 0;
    EXPECT_EQ(getter.TestRead(page, strErr, nLength, strUrl, 0, FALSE), 11u);
}

TEST_F(OutOfProcessEngine, PostsAndReadsTheReply) {
    ASSERT_EQ(getter.Open(Url("/echo"), strErr, CString("a=1&b=2"), nullptr, FALSE), 0u);
    ASSERT_EQ(BusyRead(), 0u) << strErr.GetString();
    EXPECT_EQ(strUrl, Url("/echo"));
    const auto requests = server.Requests("/echo");
    ASSERT_EQ(requests.size(), 1u);
    EXPECT_EQ(requests[0].method, "POST");
    EXPECT_EQ(requests[0].body, "a=1&b=2");
    EXPECT_EQ(requests[0].Header("Content-Type"), "application/x-www-form-urlencoded");
}

TEST_F(OutOfProcessEngine, OpensInANewWindowAndThenReadsHereAgain) {
    server.Set("/", Html("plain"));
    const CString data = "secret=1";
    ASSERT_EQ(getter.OpenInNewWindow(Url("/echo"), strErr, data, nullptr), 0u);
    ASSERT_EQ(server.Requests("/echo").size(), 1u);
    EXPECT_EQ(server.Requests("/echo")[0].body, "secret=1");
    EXPECT_EQ(BusyRead(), 22u);

    ASSERT_EQ(getter.Open(Url("/"), strErr, FALSE), 0u);
    ASSERT_EQ(BusyRead(), 0u) << strErr.GetString();
    EXPECT_EQ(page, "plain");
}
