// Post data reach the server once, also one that reads them and closes without a reply.
#include <algorithm>
#include <cstdlib>

#include "contract/ChromiumPages.h"
#include "support/RawServer.h"

using namespace test_support;

namespace {

constexpr const char* kNoReply = "the server closed the connection without a reply";

std::string Kept(const std::string& body) {
    return "HTTP/1.1 200 OK\r\nContent-Type: text/html\r\nConnection: keep-alive\r\n"
           "Content-Length: " +
           std::to_string(body.size()) + "\r\n\r\n" + body;
}

std::string Form(const std::string& action) {
    return "<form method=post action=" + action +
           "><input name=a value=1></form><script>document.forms[0].submit()</script>";
}

// How the post data come to be sent. What is at /page has been loaded twice before, so that the
// browser holds connections on which it would send again.
struct Way {
    const char* name;
    bool isByClient;
    std::string page; // shown first, or where the client's post data go
    std::string reply;
    DWORD code;
    std::size_t warmUps;

    friend void PrintTo(const Way& way, std::ostream* out) { *out << way.name; }
};

const Way kWays[] = {
    {"cold", true, "/post", {}, ZRHB_READ_FAILED, 0},
    {"warm", true, "/post", {}, ZRHB_READ_FAILED, 2},
    {"kept", true, "/answered", {}, ZRHB_OK, 2},
    {"redirected", true, "/moved",
     "HTTP/1.1 307 M\r\nLocation: /post\r\nConnection: keep-alive\r\n"
     "Content-Length: 0\r\n\r\n",
     ZRHB_READ_FAILED, 1},
    {"form", false, "/form", Kept(Form("/post")), ZRHB_READ_FAILED, 1},
    {"frame", false, "/frame", Kept("<iframe src=/form></iframe>"), ZRHB_OK, 1},
    {"images", false, "/images",
     Kept("<script>const next = () => { const image = new Image();"
          "image.onload = image.onerror = next; image.src = '/image?' + Math.random() };"
          "for (let i = 0; i < 4; i++) next(); setTimeout(() => document.forms[0].submit(), 100)"
          "</script><form method=post action=/post><input name=a value=1></form>"),
     ZRHB_READ_FAILED, 0},
    {"script", false, "/script",
     Kept("<script>var x = new XMLHttpRequest(); x.open('POST', '/post', false);"
          "try { x.send('a=1') } catch (failure) {}</script>"),
     ZRHB_OK, 1},
};

std::size_t Rounds() {
    const char* text = std::getenv("ZRHTTP_TEST_ROUNDS");
    return text ? std::strtoul(text, nullptr, 10) : 6;
}

class PostOnce : public ChromiumPages {
protected:
    std::size_t Count(const std::string& part) {
        const auto requests = m_server.Requests();
        return static_cast<std::size_t>(
            std::count_if(requests.begin(), requests.end(), [&](const std::string& request) {
                return request.find(part) != std::string::npos;
            }));
    }

    RawServer m_server;
};

class PostOnceBy : public PostOnce, public testing::WithParamInterface<Way> {};

} // namespace

TEST_P(PostOnceBy, EachWay) {
    const Way& way = GetParam();
    m_server.Set("/page", Kept("a page"));
    m_server.Set("/answered", Kept("accepted"));
    m_server.Set("/image", Kept("no image"));
    m_server.Set("/form", Kept(Form("/post")));
    if (!way.reply.empty()) m_server.Set(way.page, way.reply);
    const std::string name = "POST " + std::string(way.isByClient ? way.page : "/post") + " ";
    const std::string last = way.page == "/moved" ? "POST /post " : name;
    for (std::size_t round = 1; round <= Rounds(); ++round) {
        for (std::size_t i = 0; i < way.warmUps; ++i)
            Fetch(m_server.Url("/page"));
        const std::string url = m_server.Url(way.page);
        ASSERT_EQ(way.isByClient ? Post(url, "a=1") : Open(url), ZRHB_OK) << m_error.GetString();
        EXPECT_EQ(Read(), way.code) << m_error.GetString();
        EXPECT_EQ(StatusText(), way.code == ZRHB_OK ? "" : kNoReply);
        ASSERT_EQ(Count(name), round);
        ASSERT_EQ(Count(last), round);
    }
}

INSTANTIATE_TEST_SUITE_P(Ways, PostOnceBy, testing::ValuesIn(kWays),
                         [](const auto& way) { return std::string(way.param.name); });

// On the connection on which it was asked, the browser would send them twice.
TEST_F(PostOnce, WithCredentialsThatTheServerAsksFor) {
    m_server.Set("/asking", "HTTP/1.1 401 U\r\nWWW-Authenticate: Basic realm=\"x\"\r\n"
                            "Connection: keep-alive\r\nContent-Length: 0\r\n\r\n");
    std::string url = m_server.Url("/asking");
    url.insert(url.find("127"), "anna:se%3Acret@");
    for (std::size_t round = 1; round <= Rounds(); ++round) {
        ASSERT_EQ(Post(url, "a=1"), ZRHB_OK) << m_error.GetString();
        EXPECT_EQ(Read(), ZRHB_READ_FAILED);
        EXPECT_EQ(StatusText(), "the server wants credentials");
        ASSERT_EQ(Count("POST /asking "), 2 * round);
        ASSERT_EQ(Count("Authorization: Basic YW5uYTpzZTpjcmV0\r\n"), round);
    }
}
