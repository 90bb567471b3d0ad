// What was cut or malformed is not whole, for pages and downloads.
#include <ZrHbInet.h>
#include <ZrHbUHttpGet.h>
#include <gtest/gtest.h>

#include "support/CutReplies.h"

using namespace test_support;

namespace {

// A failure's text in the log; all of them when there are several.
std::string FailureIn(const std::string& log) {
    constexpr std::string_view mark = ", Text = \"";
    std::string texts;
    for (auto at = log.find("\terror\t"); at != std::string::npos;
         at = log.find("\terror\t", at + 1)) {
        const auto begin = log.find(mark, at) + mark.size();
        texts += log.substr(begin, log.find('"', begin) - begin);
    }
    return texts;
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
              ZRHB_OK);
    servers.ForEach([&](const CutReply& reply, const std::string& from) {
        const bool isWhole = *reply.reason == '\0';
        CByteBuffer page(4096, 4096);
        CComBSTR status;
        EXPECT_EQ(getter.Open(CString(from), error, FALSE), ZRHB_OK);
        EXPECT_EQ(getter.BusyRead(page, error, url, 30'000, FALSE, 0, nullptr, nullptr),
                  isWhole ? ZRHB_OK : ZRHB_READ_FAILED)
            << reply.name;
        EXPECT_EQ(S_OK, getter.Get_IWebBrowser2_ptr()->get_StatusText(&status));
        EXPECT_EQ(status.ToAnsi().View(), reply.reason) << reply.name;
        EXPECT_EQ(std::string(page.GetData(), page.GetData() + page.GetSize()),
                  isWhole ? reply.content : "")
            << reply.name;
    });
}

TEST(CutReplies, AreToldByDownloads) {
    CutReplyServers servers;
    servers.ForEach([&](const CutReply& reply, const std::string& from) {
        const TemporaryHome home;
        const int result = CZrHbInet().DownloadFile(CString(from), home.Path("file").c_str());
        const auto file = home.ReadFile("file");
        EXPECT_EQ(file.value_or(""), reply.content) << reply.name;
        EXPECT_EQ(FailureIn(*home.ReadFile("log/zrhttpbase3.log")), reply.reason) << reply.name;
        // The result goes by the length, where there is one.
        const bool isShort = std::string_view(reply.reason).find(" of ") != std::string_view::npos;
        EXPECT_EQ(result, file && !isShort ? TRUE : FALSE) << reply.name;
    });
}

} // namespace
