// Taking URLs apart, resolving references, refresh texts.
#include <gtest/gtest.h>

#include <platform/Url.h>

#include "browser/builtin/RefreshRule.h"
#include "browser/common/PageUrl.h"

namespace platform_test {
namespace {

TEST(ParseUrl, TakesUrlsApart) {
    DWORD service = 0;
    CString server;
    CString object;
    WORD port = 0;
    ASSERT_TRUE(AfxParseURL("https://me:pw@www.bank.de/a/b?c=d#e", service, server, object, port));
    EXPECT_EQ(AFX_INET_SERVICE_HTTPS, service);
    EXPECT_EQ(CString("www.bank.de"), server);
    EXPECT_EQ(CString("/a/b?c=d"), object);
    EXPECT_EQ(443, port);
    ASSERT_TRUE(AfxParseURL("http://127.0.0.1:8080", service, server, object, port));
    EXPECT_EQ(AFX_INET_SERVICE_HTTP, service);
    EXPECT_EQ(8080, port);
    for (const char* url : {"", "www.bank.de/a", "http://", "http://a b/", "c:\\a.htm"}) {
        EXPECT_FALSE(AfxParseURL(url, service, server, object, port)) << url;
        EXPECT_TRUE(server.IsEmpty());
        EXPECT_TRUE(object.IsEmpty());
    }
}

TEST(ResolveReference, FollowsTheRfc) {
    const std::string base = "http://h/a/b.htm?q#f";
    const std::pair<const char*, const char*> cases[] = {{"x", "http://h/a/x"},
                                                         {"?z", "http://h/a/b.htm?z"},
                                                         {"#g", "http://h/a/b.htm?q#g"},
                                                         {"", "http://h/a/b.htm?q"},
                                                         {"../../y", "http://h/y"},
                                                         {"//k/l#m", "http://k/l#m"},
                                                         {"\\m\\n", "http://h/m/n"},
                                                         {" x\n y ", "http://h/a/x%20y"},
                                                         {"http://u:p@x/", "http://x/"},
                                                         {"a?b/../c", "http://h/a/a?b/../c"},
                                                         {"\xC3\xBC", "http://h/a/%C3%BC"},
                                                         {"javascript:x", "javascript:x"}};
    for (const auto& [reference, expected] : cases)
        EXPECT_EQ(expected, platform::ResolveReference(base, reference).value_or("(none)"))
            << reference;
    EXPECT_EQ("file:///c:/a/x.htm",
              platform::ResolveReference("file:///c:/a/b.htm", "x.htm").value_or("(none)"));
    EXPECT_FALSE(platform::ResolveReference(base, "http://:x:/").has_value());
}

TEST(ParsePageUrl, HostsAreAskedForInAscii) {
    const std::pair<const char16_t*, const char*> cases[] = {
        {u"m\u00FCller.test/\u00FC", "http://xn--mller-kva.test/%C3%BC"},
        {u"http://M%C3%9CLLER.test/", "http://xn--mller-kva.test/"},
        {u"http://fa\u00DF.test/", "http://xn--fa-hia.test/"},
        {u"http://\u00B2/", "http://0.0.0.2/"}, // becomes a number, which is an address
        {u"http://a\u00AD\uFFFD.test/", "the URL's host is no valid name"}};
    for (const auto& [typed, expected] : cases) {
        std::string error;
        const auto page = platform::ParsePageUrl(typed, error);
        EXPECT_EQ(expected, page ? page->url : error);
    }
}

TEST(ParseRefresh, FollowsTheStandard) {
    const std::pair<const char*, const char*> cases[] = {{"5", "5 "},
                                                         {" 5 ; url=a", "5 a"},
                                                         {"0;URL='a b'x", "0 a b"},
                                                         {"1.9,b", "1 b"},
                                                         {"3 url = \"c\"", "3 c"},
                                                         {"0; urlx", "0 urlx"},
                                                         {".5; url=d", "0 d"},
                                                         {"99999999999;e", "86400 e"},
                                                         {"x", "none"},
                                                         {"", "none"},
                                                         {"5x", "none"},
                                                         {"-1", "none"}};
    for (const auto& [text, expected] : cases) {
        const auto rule = platform::ParseRefresh(text);
        EXPECT_EQ(expected, rule ? std::to_string(rule->seconds) + " " + rule->reference : "none")
            << text;
    }
}

} // namespace
} // namespace platform_test
