// What was cut or malformed is not whole, for pages and downloads.
#include <ZrHbInet.h>
#include <ZrHbUHttpGet.h>
#include <gtest/gtest.h>

#include "support/CutReplies.h"

using namespace test_support;

namespace {

int CountOf(const std::string& part, const std::string& text) {
    int count = 0;
    for (auto at = text.find(part); at != std::string::npos; at = text.find(part, at + 1))
        ++count;
    return count;
}

TEST(CutReplies, AreNoPages) {
    CutReplyServers servers;
    const ScopedVariable engine("ZRHTTP_CONTROL", "builtin");
    CZrHbUHttpGet getter(eAppGroup_2);
    getter.SetSecurityTimeout(0);
    CString error;
    CString url;
    ASSERT_EQ(getter.ConnectV2(nullptr, error, CZrHbUHttpGet::eVisible,
                               CZrHbUHttpGet::eConnectWith_InternetExplorer, 0, ""),
              ZRHB_OK)
        << error.GetString();
    servers.ForEach([&](const CutReply& reply, const std::string& from) {
        CByteBuffer page(4096, 4096);
        CComBSTR status;
        ASSERT_EQ(getter.Open(CString(from), error, FALSE), ZRHB_OK) << reply.name;
        const DWORD code = getter.BusyRead(page, error, url, 30'000, FALSE, 0, nullptr, nullptr);
        ASSERT_EQ(S_OK, getter.Get_IWebBrowser2_ptr()->get_StatusText(&status));
        EXPECT_EQ(code, *reply.reason ? ZRHB_READ_FAILED : ZRHB_OK) << reply.name;
        EXPECT_EQ(status.ToAnsi().View(), reply.reason) << reply.name;
        EXPECT_EQ(std::string(page.GetData(), page.GetData() + page.GetSize()),
                  *reply.reason ? "" : reply.content)
            << reply.name;
    });
}

// The result goes by the length; that a reply is not whole is told once.
TEST(CutReplies, AreToldByDownloads) {
    CutReplyServers servers;
    servers.ForEach([&](const CutReply& reply, const std::string& from) {
        const TemporaryHome home;
        const CString file(std::string_view(home.Path("file")));
        EXPECT_EQ(CZrHbInet().DownloadFile(CString(from), file), reply.isDownloaded ? TRUE : FALSE)
            << reply.name;
        EXPECT_EQ(home.ReadFile("file").value_or(""), reply.content) << reply.name;
        const std::string log = home.ReadFile("log/zrhttpbase3.log").value_or("");
        const std::string number = std::to_string(reply.error);
        const std::string told = " with error " + number +
                                 "\\nInternetGetLastResponseInfo(): Error = " + number +
                                 ", Text = \"" + reply.reason + "\"";
        EXPECT_EQ(CountOf(told, log), *reply.reason ? 1 : 0) << reply.name << ": " << log;
        EXPECT_EQ(CountOf("\terror\t", log), *reply.reason ? 1 : 0) << reply.name << ": " << log;
    });
}

} // namespace
