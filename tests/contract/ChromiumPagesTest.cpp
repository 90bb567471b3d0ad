// What Chromium's pages come to through the getter: requests, sources and failures.
#include <memory>

#include "contract/ChromiumPages.h"
#include "support/RawServer.h"

using namespace test_support;

namespace {

using Requests = ChromiumPages;
using Sources = ChromiumPages;
using Failures = ChromiumPages;

// "<p>compressed \xE4\xF6\xFC</p>", three times.
constexpr std::string_view kCompressed(
    "\x1f\x8b\x08\x00\x00\x00\x00\x00\x02\x03\xb3\x29\xb0\x4b\xce\xcf\x2d\x28\x4a\x2d\x2e\x4e\x4d"
    "\x51\x78\xf2\xed\x8f\x8d\x7e\x81\x9d\x0d\xd1\x82\x00\x95\x4e\x7f\xb8\x3f\x00\x00\x00",
    44);

// The same, for brotli.
constexpr std::string_view kBrotli(
    "\x1b\x3e\x00\xf8\x1d\x07\x76\x8c\xbc\x4d\x46\xd6\xbc\x6a\x9e\x31\x7b\xfe\xfd\xd2\x06\x47"
    "\xae\x7c\xde\xaa\x16\x7f\x8a\x04\x7a\x90\xba\xd3\xbc\x23\x00",
    37);

std::string Encoded(const std::string& coding, std::string_view content) {
    return "HTTP/1.1 200 OK\r\nContent-Type: text/html\r\nContent-Encoding: " + coding +
           "\r\nContent-Length: " + std::to_string(content.size()) + "\r\n\r\n" +
           std::string(content);
}

std::string LargePage() {
    const std::string line = "<!--" + std::string(1'000'000, 'x') + "-->\r\n";
    std::string page;
    for (int index = 0; index < 10; ++index)
        page += line;
    return page + "<p>end";
}

} // namespace

TEST_F(Sources, AreTheBytesThatTheServerSent) {
    const struct {
        const char* type;
        std::string body;
    } cases[] = {
        {"text/html", "<p>M\xFCller"},
        {"text/html; charset=iso-8859-1", "<p>M\xFCller \x80\x9F"},
        {"text/html; charset=utf-8", "<p>M\xC3\xBCller"},
        {"text/html; charset=utf-8", "\xEF\xBB\xBF<p>M\xC3\xBCller"},
        {"text/html; charset=utf-8", "<p>not UTF-8: \xFC\xC3"},
        {"text/html", "<meta charset=windows-1252><p>\x80\x93\xFF\x81"},
        {"text/html", std::string("<p>a\0b\0\0", 8)},
        {"text/plain", "plain <text>\r\n\n\r \xE4"},
        {"text/html", ""},
        {"text/html", LargePage()},
    };
    for (const auto& one : cases) {
        Server().Set("/page", Bytes(one.type, one.body));
        EXPECT_TRUE(FetchPath("/page") == one.body)
            << one.type << ": " << one.body.substr(0, 40) << "\nread: " << m_bytes.substr(0, 40);
    }
    Answer chunked = Html("");
    chunked.pieces = {"<p>in ", "three ", "chunks"};
    Server().Set("/chunked", chunked);
    EXPECT_EQ(FetchPath("/chunked"), "<p>in three chunks");
    RawServer raw;
    raw.Set("/gzip", Encoded("gzip", kCompressed));
    raw.Set("/brotli", Encoded("br", kBrotli));
    const std::string plain = "<p>compressed \xE4\xF6\xFC</p>";
    EXPECT_EQ(Fetch(raw.Url("/gzip")), plain + plain + plain);
    EXPECT_EQ(Fetch(raw.Url("/brotli")), plain + plain + plain);
}

TEST_F(Sources, AreThoseOfThePageThatTheBrowserEndsAt) {
    Server().Set("/end", Html("<p>end"));
    for (const int status : {301, 302, 303, 307, 308}) {
        Server().Set("/moved", Redirect(status, "/end"));
        EXPECT_EQ(FetchPath("/moved"), "<p>end") << status;
        EXPECT_STREQ(m_url, CString(Server().Url("/end")));
    }
    Server().Set("/form", Html("<form method=post action=/end><input name=a value=1></form>"
                               "<script>document.forms[0].submit()</script>"));
    EXPECT_EQ(FetchPath("/form"), "<p>end");
    EXPECT_EQ(Server().Requests("/end").back().body, "a=1");

    Server().Set("/special", Bytes("application/x-foo", "<b>\xE4 & no markup"));
    EXPECT_EQ(Open(Server().Url("/special")), ZRHB_OK);
    EXPECT_EQ(Read(), ZRHB_READ_FAILED);
    Getter().DoNextOpenForSpecialContentType("application/x-foo");
    EXPECT_EQ(FetchPath("/special"), "<b>\xE4 & no markup");
    EXPECT_EQ(Open(Server().Url("/special")), ZRHB_OK);
    EXPECT_EQ(Read(), ZRHB_READ_FAILED) << "the change of the MIME database outlasts the page";
}

TEST_F(Requests, CarryTheDataAndTheHeadersOfTheClient) {
    std::string large(10'000'000, '\0');
    for (std::size_t index = 0; index < large.size(); index += 3)
        large[index] = static_cast<char>(index % 251);
    Server().Set("/accept", Html("accepted"));
    EXPECT_EQ(Post(Server().Url("/accept"), large, "Content-Type: application/octet-stream"),
              ZRHB_OK); // the test server refuses forms of this size
    EXPECT_EQ(Read(), ZRHB_OK);
    EXPECT_EQ(m_bytes, "accepted");
    EXPECT_TRUE(Server().Requests("/accept").at(0).body == large);

    // The same origin gets the data again, another one none of the headers.
    const char* const headers = "Content-Type: text/own\r\nX-Own: 1\r\n";
    TestServer other;
    other.Set("/other", Html("other"));
    for (const int status : {307, 308}) {
        const std::string path = "/again" + std::to_string(status);
        Server().Set(path, Html("again"));
        Server().Set("/repeat", Redirect(status, path));
        EXPECT_EQ(Post(Server().Url("/repeat"), std::string("a\0b", 3), headers), ZRHB_OK);
        EXPECT_EQ(Read(), ZRHB_OK);
        EXPECT_EQ(m_bytes, "again");
        const ReceivedRequest again = Server().Requests(path).at(0);
        EXPECT_EQ(again.method, "POST");
        EXPECT_EQ(again.body, std::string("a\0b", 3));
        EXPECT_EQ(again.Header("Content-Type"), "text/own");
    }
    for (const int status : {302, 303}) {
        Server().Set("/leave", Redirect(status, other.Url("/other")));
        EXPECT_EQ(Post(Server().Url("/leave"), "a=1", headers), ZRHB_OK);
        EXPECT_EQ(Read(), ZRHB_OK);
        EXPECT_EQ(m_bytes, "other");
        EXPECT_EQ(Server().Requests("/leave").back().Header("X-Own"), "1");
        EXPECT_EQ(other.Requests("/other").back().Header("X-Own"), "(none)") << status;
    }
    Server().Set("/leave", Redirect(307, other.Url("/other")));
    EXPECT_EQ(Post(Server().Url("/leave"), "a=1", headers), ZRHB_OK);
    EXPECT_EQ(Read(), ZRHB_READ_FAILED);
    EXPECT_EQ(StatusText(), "the server redirects the post data to another origin");
    EXPECT_EQ(other.Requests("/other").size(), 2u);
    Server().Set("/with-frame", Html("<iframe src=/accept></iframe>"));
    EXPECT_EQ(Post(Server().Url("/with-frame"), "a=1", headers), ZRHB_OK);
    EXPECT_EQ(Read(), ZRHB_OK);
    EXPECT_EQ(Server().Requests("/accept").at(1).method, "GET");
    EXPECT_EQ(Server().Requests("/accept").at(1).Header("X-Own"), "(none)");
}

TEST_F(Failures, AreToldInPlainWordsAndTheNextPageLoads) {
    RawServer raw;
    const std::string head = "HTTP/1.1 200 OK\r\nContent-Type: text/html\r\n";
    raw.Set("/half", head + "Content-Length: 9\r\n\r\nhalf");
    raw.Set("/chunk", head + "Transfer-Encoding: chunked\r\n\r\na\r\nhalf");
    raw.Set("/nothing", "");
    raw.Set("/no-gzip", head + "Content-Encoding: gzip\r\nContent-Length: 4\r\n\r\nhalf");
    int closedPort = 0;
    {
        const TestServer gone;
        closedPort = gone.Port();
    }
    const struct {
        std::string url;
        const char* status;
    } cases[] = {
        {"http://127.0.0.1:" + std::to_string(closedPort) + "/", "connection refused"},
        {"http://no-such-host.invalid/", "host name not found: no-such-host.invalid"},
        {raw.Url("/half"), "the connection broke off"},
        {raw.Url("/chunk"), "the connection broke off"},
        {raw.Url("/nothing"), "the server closed the connection without a reply"},
        {raw.Url("/no-gzip"), "the reply's compression is broken"},
    };
    Server().Set("/page", Html("page"));
    for (const auto& one : cases) {
        EXPECT_EQ(Open(one.url), ZRHB_OK) << one.url;
        EXPECT_EQ(Read(), ZRHB_READ_FAILED) << one.status << ": " << m_bytes;
        EXPECT_EQ(StatusText(), one.status) << one.url;
        EXPECT_EQ(FetchPath("/page"), "page");
        EXPECT_EQ(StatusText(), "");
    }
}

TEST_F(Failures, OfAuthenticationAreToldAndHoldNothingUp) {
    Answer denied = Html("<p>who are you?");
    denied.status = 401;
    denied.headers = {{"WWW-Authenticate", "Basic realm=\"x\""}};
    Server().Set("/denied", denied);
    Server().Set("/page", Html("page"));
    for (const char* data : {"", "a=1"}) {
        EXPECT_EQ(*data ? Post(Server().Url("/denied"), data) : Open(Server().Url("/denied")),
                  ZRHB_OK);
        EXPECT_EQ(Read(), ZRHB_READ_FAILED) << m_bytes;
        EXPECT_EQ(StatusText(), "the server wants credentials");
        EXPECT_EQ(FetchPath("/page"), "page");
    }
}
