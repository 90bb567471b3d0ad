#include <gtest/gtest.h>

#include <ZrHbBrightrelayReply.h>

namespace {

using Reply = CZrHbBrightrelayReply;

struct LastError {
    explicit LastError(const Reply& reply) : code(reply.GetLastParserError(text)) {}
    CString text;
    int code;
};

} // namespace

TEST(BrightrelayReply, TakesValuesOutOfTheComment) {
    const struct {
        const char* pszComment;
        const char* pszName;
        const char* pszPlain;
        const char* pszQuoted;
        const char* pszStatus;
    } cases[] = {
        {"<!-- BRIGHTRELAY STATUS=0 MSG=\"Transfer done\" -->", "MSG", "\"Transfer",
         "Transfer done", "0"},
        {"<!--BRIGHTRELAY A=1 --><!-- BRIGHTRELAY A=2 -->", "A", "2", "", ""},
        {"<!-- BRIGHTRELAY MSG=x STATUS=0-->", "STATUS", "", "", ""},
        {"<!-- BRIGHTRELAY XSTATUS=7 STATUS=0 -->", "TATUS", "7", "", "7"},
        {"<!-- BRIGHTRELAY STATUS=0\r\n MSG=x\ny -->", "MSG", "xy", "", "0"},
        {"<!-- BRIGHTRELAY A=\"open B=1 -->", "A", "\"open", "", ""},
        {"<!-- BRIGHTRELAY A=1 B=\"2\" -->", "B=", "\"2\"", "2", ""},
        {"<!-- BRIGHTRELAY A B=1 -->", "A B", "", "", ""}, // a blank ends the key itself
        {"<!-- BRIGHTRELAY STATUS=00 -->", "", "", "", "00"},
    };
    for (const auto& one : cases) {
        Reply reply;
        ASSERT_EQ(reply.Init(CString("<p>--> page") + one.pszComment + "</p>"), 1);
        EXPECT_STREQ(reply.GetValue(one.pszName, Reply::eTagType_Plain), one.pszPlain)
            << one.pszComment;
        EXPECT_STREQ(reply.GetValue(one.pszName, Reply::eTagType_Quoted), one.pszQuoted)
            << one.pszComment;
        EXPECT_STREQ(reply.GetStatusValue(), one.pszStatus) << one.pszComment;
        EXPECT_EQ(reply.IsStatusOkay(), CString(one.pszStatus) == "0");
        EXPECT_EQ(LastError(reply).code, 0);
    }
}

TEST(BrightrelayReply, TellsTheLastFailureUntilItIsCleanedUp) {
    Reply reply;
    EXPECT_STREQ(reply.GetValue("A", Reply::eTagType_Plain), "");
    EXPECT_STREQ(LastError(reply).text, "Object is not initialized. Please use Init() first.");
    EXPECT_EQ(reply.Init("<!--BRIGHTRELAY-->"), 0);
    EXPECT_STREQ(LastError(reply).text, "Cannot find tag <!-- BRIGHTRELAY  or <!--BRIGHTRELAY  in "
                                        "the message to parse!");
    EXPECT_EQ(reply.Init("--> <!-- BRIGHTRELAY A=1 --"), 0);
    EXPECT_STREQ(LastError(reply).text, "Cannot find end-tag --> in the message to parse!");
    EXPECT_EQ(LastError(reply).code, -1);

    EXPECT_EQ(reply.Init("<!-- BRIGHTRELAY A=1 -->"), 1);
    EXPECT_EQ(LastError(reply).code, -1) << "a success forgets nothing";
    Reply copy(reply);
    EXPECT_EQ(reply.Init("<!-- BRIGHTRELAY A=2 -->"), 1);
    EXPECT_EQ(LastError(reply).code, 0) << "but taking in another page does";
    EXPECT_EQ(reply.Init(""), 0);
    EXPECT_EQ(reply.IsObjectInitialized(), 0);
    EXPECT_STREQ(reply.GetBrightrelayReply(), "");
    EXPECT_STREQ(copy.GetBrightrelayReply(), "<!-- BRIGHTRELAY A=1 -->");
    copy = reply;
    EXPECT_EQ(copy.IsObjectInitialized(), 0);
    copy.Cleanup();
    EXPECT_EQ(LastError(copy).code, 0);
    EXPECT_STREQ(LastError(copy).text, "");
}
