// The bytes of a page, exactly as sent; what counts as a page.
#include <gtest/gtest.h>

#include <platform/Registry.h>

#include "platform/browser/BrowserSink.h"
#include "platform/browser/TestBrowser.h"
#include "support/PumpUntil.h"
#include "support/TemporaryHome.h"
#include "support/TestServer.h"

namespace platform_test {
namespace {

using namespace test_support;

class PageSource : public testing::Test {
protected:
    TestServer m_server;
    TestBrowser m_browser;
};

TEST_F(PageSource, BytesAreKeptWhateverTheyMean) {
    const std::string nul("a\0b\0\0c", 6);
    const std::pair<const char*, Answer> pages[] = {
        {"/latin1", Bytes("text/html; charset=ISO-8859-1", "<p>Gr\xFC\xDF"
                                                           "e \x80\x81</p>")},
        {"/utf8", Bytes("text/html; charset=UTF-8", "\xEF\xBB\xBF<p>Gr\xC3\xBC\xC3\x9F"
                                                    "e</p>")},
        {"/invalid", Bytes("text/html; charset=UTF-8", "\xC3(\xFF\xFE<p>")},
        {"/nul", Bytes("text/html", nul)},
        {"/lines", Bytes("text/plain", "a\r\nb\nc\rd\r\n\r\n")},
        {"/empty", Html("")},
        {"/untyped", Bytes("", "<p>no type</p>")},
        {"/xml", Bytes("application/rss+xml", "<rss/>")},
        {"/large", Html("<!--" + std::string(10 * 1024 * 1024, 'x') + "-->end")}};
    for (const auto& [path, answer] : pages) {
        m_server.Set(path, answer);
        const std::string url = m_server.Url(path) + "?q=1#part";
        m_browser.Load(url);
        EXPECT_TRUE(m_browser.Source() == answer.body) << path;
        EXPECT_EQ(READYSTATE_COMPLETE, m_browser.State()) << path;
        EXPECT_EQ(url, m_browser.Location());
        EXPECT_EQ("", m_browser.Status());
    }
    EXPECT_EQ("GET", m_server.Requests("/latin1").at(0).method);
    EXPECT_EQ("/latin1?q=1", m_server.Requests("/latin1").at(0).target);
}

TEST_F(PageSource, TransferCodingsAreUndone) {
    Answer chunked;
    chunked.pieces = {"first ", "second ", "third"};
    m_server.Set("/chunked", chunked);
    m_browser.Load(m_server.Url("/chunked"));
    EXPECT_EQ("first second third", m_browser.Source());

    // The server compresses texts for whoever takes it.
    const std::string text(100'000, 'z');
    m_server.Set("/compressed", Html(text));
    m_browser.Load(m_server.Url("/compressed"));
    EXPECT_NE(std::string::npos,
              m_server.Requests("/compressed").back().Header("Accept-Encoding").find("gzip"));
    EXPECT_TRUE(m_browser.Source() == text);
}

TEST_F(PageSource, ADocumentOutlivesItsPage) {
    m_server.Set("/one", Html("one"));
    m_server.Set("/two", Html("two"));
    m_browser.Load(m_server.Url("/one"));
    CComPtr<IDispatch> first;
    ASSERT_EQ(S_OK, m_browser->get_Document(&first));
    ASSERT_EQ(S_OK, m_browser.Navigate(m_server.Url("/two")));
    EXPECT_FALSE(m_browser.HasDocument());
    m_browser.WaitUntilDone();
    EXPECT_EQ("two", m_browser.Source());
    m_browser.Release();
    EXPECT_EQ("one", SourceOf(first.Get()));
}

TEST_F(PageSource, OtherTypesAreNotShown) {
    Answer attachment = Html("<p>save me</p>");
    attachment.headers = {{"Content-Disposition", "attachment; filename=a.htm"}};
    Answer nothing = Bytes("", "");
    nothing.status = 204;
    m_server.Set("/data", Bytes("application/x-data; v=1", "1234"));
    m_server.Set("/attachment", attachment);
    m_server.Set("/nothing", nothing);
    const std::pair<const char*, const char*> cases[] = {
        {"/data", "application/x-data is not shown as a page"},
        {"/attachment", "an attachment is not shown as a page"},
        {"/nothing", "the server has sent no page (status 204)"}};
    for (const auto& [path, status] : cases) {
        m_browser.Load(m_server.Url(path));
        EXPECT_FALSE(m_browser.HasDocument()) << path;
        EXPECT_EQ(READYSTATE_COMPLETE, m_browser.State());
        EXPECT_EQ(status, m_browser.Status());
    }
}

TEST_F(PageSource, ATypeWithThePlainTextEntryIsShownAsText) {
    const TemporaryHome home;
    auto& registry = platform::RegistryStore::Real();
    ASSERT_EQ(ERROR_SUCCESS,
              registry.CopyTree(HKEY_CLASSES_ROOT, "MIME\\Database\\Content Type\\text/plain",
                                HKEY_CLASSES_ROOT,
                                "MIME\\Database\\Content Type\\application/x-data"));
    Answer answer = Bytes("Application/X-Data", "<iframe src=/frame></iframe>");
    answer.headers = {{"Refresh", "0; url=/other"}};
    m_server.Set("/data", answer);
    m_browser.Load(m_server.Url("/data"));
    EXPECT_EQ("<iframe src=/frame></iframe>", m_browser.Source());
    PumpFor(std::chrono::milliseconds(200));
    for (const char* path : {"/frame", "/other"}) // neither frames nor refreshes in a text
        EXPECT_TRUE(m_server.Requests(path).empty()) << path;
}

TEST_F(PageSource, TheStatusIsThatOfTheLastReply) {
    const TemporaryHome home;
    home.WriteFile("page.txt", "x");
    Answer missing = Html("missing");
    missing.status = 404;
    Answer refused = Bytes("application/json", "{}"); // is not shown
    refused.status = 403;
    m_server.Set("/", Redirect(302, "/missing"));
    m_server.Set("/missing", missing);
    m_server.Set("/refused", refused);
    m_server.Set("/page", Html("page"));
    m_server.Set("/nowhere", Redirect(302, "http://127.0.0.1:1/"));
    const std::pair<std::string, LONG> replies[] = {
        {m_server.Url("/"), 404},        {m_server.Url("/page"), 200},
        {m_server.Url("/refused"), 403}, {m_server.Url("/nowhere"), 0},
        {m_server.Url("/page"), 200},    {home.Path("page.txt"), 0}};
    for (const auto& [url, status] : replies) {
        m_browser.Load(url);
        EXPECT_EQ(status, m_browser.HttpStatus()) << url;
    }
}

TEST(FilePage, IsReadFromDrivePathAbsolutePathAndUrl) {
    TemporaryHome home;
    home.WriteFile("drive_c/Bank/St\xE4rt.htm", "<iframe src='sub/frame.htm'></iframe>");
    home.WriteFile("drive_c/Bank/sub/frame.htm", "frame");
    home.WriteFile("a b.txt", std::string("x\0y", 3));
    TestBrowser browser;
    browser.Load("c:\\Bank\\sub\\frame.htm");
    EXPECT_EQ("frame", browser.Source());
    EXPECT_EQ("file:///c:/Bank/sub/frame.htm", browser.Location());
    browser.Load(home.Path("a b.txt"));
    EXPECT_EQ(std::string("x\0y", 3), browser.Source());
    browser.Load("file://" + home.Path("a%20b.txt"));
    EXPECT_EQ(std::string("x\0y", 3), browser.Source());
    browser.Load("file:///c:/Bank/none.htm");
    EXPECT_FALSE(browser.HasDocument());
    EXPECT_EQ("file not found: none.htm", browser.Status());
    browser.Load("c:\\..\\a b.txt");
    EXPECT_EQ("the path leads outside the user's drive", browser.Status());
}

} // namespace
} // namespace platform_test
