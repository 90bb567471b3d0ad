// Navigations that fail: a clear text, one record, no document, never a hang.
#include <memory>

#include <gtest/gtest.h>

#include <platform/Settings.h>

#include "platform/browser/BrowserSink.h"
#include "platform/browser/TestBrowser.h"
#include "platform/internet/InternetClient.h"
#include "support/DiagnosticRecorder.h"
#include "support/PumpUntil.h"
#include "support/RawServer.h"
#include "support/TemporaryHome.h"
#include "support/TestServer.h"

namespace platform_test {
namespace {

using namespace test_support;

// Loads a URL that fails and returns the status text; everything else a failure promises holds.
std::string StatusOfFailure(const std::string& url, const std::string& postData = "") {
    DiagnosticRecorder recorder;
    TestBrowser browser;
    const CComPtr<BrowserSink> sink = MakeObject<BrowserSink>();
    sink->Connect(*browser);
    browser.Load(url, postData, postData.empty() ? "" : "Content-Type: text/plain\r\n");
    EXPECT_EQ(READYSTATE_COMPLETE, browser.State());
    EXPECT_FALSE(browser.HasDocument());
    EXPECT_EQ(3u, sink->events.size());
    if (sink->events.size() == 3) {
        EXPECT_TRUE(sink->events[0].starts_with("before "));
        EXPECT_TRUE(sink->events[1].starts_with("navigated "));
        EXPECT_TRUE(sink->events[2].starts_with("complete "));
    }
    EXPECT_EQ(std::vector<std::string>{"(none)"}, sink->sources);
    EXPECT_EQ(1u, recorder.Failures().size());
    for (const std::string& text : recorder.Failures())
        EXPECT_TRUE(text.ends_with(browser.Status())) << text;
    sink->Disconnect();
    return browser.Status();
}

TEST(Failure, NoServer) {
    int port = 0;
    {
        const TestServer gone;
        port = gone.Port();
    }
    EXPECT_EQ("connection refused", StatusOfFailure("http://127.0.0.1:" + std::to_string(port)));
    EXPECT_EQ("host name not found: no-such-host.invalid",
              StatusOfFailure("http://no-such-host.invalid/"));
}

TEST(Failure, APageThatBreaksOffLosesItsDocument) {
    RawServer server;
    const auto gate = std::make_shared<Gate>();
    server.Set("/", "HTTP/1.1 200 OK\r\nContent-Length: 10\r\n\r\n12345", gate);
    TestBrowser browser;
    ASSERT_EQ(S_OK, browser.Navigate(server.Url("/")));
    browser.WaitForState(READYSTATE_INTERACTIVE);
    EXPECT_EQ("12345", browser.Source());
    gate->Open();
    browser.WaitUntilDone();
    EXPECT_FALSE(browser.HasDocument());
    EXPECT_EQ("incomplete: 5 of 10 bytes", browser.Status());
}

TEST(Failure, OfCertificates) {
    const TemporaryHome home;
    const Certificate authority = Certificate::Authority();
    const Certificate trusted = Certificate::SelfSigned({"IP:127.0.0.1"});
    home.WriteFile("trusted.pem", authority.PemWithKey() + trusted.Pem());
    const ScopedVariable trust("ZRHTTP_CA_FILE", home.Path("trusted.pem").c_str());
    const bool isBuiltin = platform::GetSetting("ZRHTTP_CONTROL").value != "chromium";
    using Outcome = std::pair<DWORD, std::string>; // of a download; the text is the browser's, too
    const Outcome page{0, "opened"};
    const Outcome otherHost{ERROR_INTERNET_SEC_CERT_CN_INVALID, "certificate is for another host"};
    const Outcome unknown{ERROR_INTERNET_INVALID_CA, "certificate of an unknown authority"};
    const Outcome selfSigned{ERROR_INTERNET_INVALID_CA, "self-signed certificate"};
    const auto outOfDate = [&](const std::string& text) {
        return Outcome{ERROR_INTERNET_SEC_CERT_DATE_INVALID,
                       isBuiltin ? text : "certificate has expired or is not yet valid"};
    };
    const auto issue = [&](const std::string& names, const std::string& commonName = "any") {
        return authority.Issue({names, Validity::current, commonName});
    };
    const struct {
        const char* host;
        Certificate presented;
        Outcome outcome;
    } cases[] = {
        {"127.0.0.1", issue("IP:127.0.0.1"), page},
        {"localhost", issue("DNS:other.example,DNS:localhost", "other.example"), page},
        {"www.bank.localhost", issue("DNS:*.bank.localhost"), page},
        {"a.www.bank.localhost", issue("DNS:*.bank.localhost"), otherHost},
        {"bank.localhost", issue("DNS:*.bank.localhost"), otherHost},
        {"127.0.0.1", issue("IP:127.0.0.2"), otherHost},
        {"127.0.0.1", issue("DNS:127.0.0.1"), otherHost},
        {"127.0.0.1", issue("", "127.0.0.1"), otherHost},
        {"localhost", issue("", "localhost"), otherHost},
        {"localhost", issue("email:a@localhost", "localhost"), otherHost},
        {"localhost", issue("DER:301982176c6f63616c686f7374002e6576696c2e6578616d706c65"), // a NUL
         otherHost},
        {"127.0.0.1", authority.Issue({"IP:127.0.0.1", Validity::expired}),
         outOfDate("certificate has expired")},
        {"127.0.0.1", authority.Issue({"IP:127.0.0.1", Validity::future}),
         outOfDate("certificate is not yet valid")},
        {"127.0.0.1", Certificate::Authority().Issue({"IP:127.0.0.1"}), unknown},
        {"127.0.0.1", authority.IssueAuthority().Issue({"IP:127.0.0.1"}), unknown},
        {"127.0.0.1", Certificate::SelfSigned({"IP:127.0.0.1"}), isBuiltin ? selfSigned : unknown},
        {"127.0.0.1", trusted, page},
    };
    Answer opened = Html("opened");
    opened.headers = {{"Connection", "close"}};
    TestBrowser browser;
    for (const auto& one : cases) {
        TestServer server(one.presented);
        server.Set("/", opened);
        const std::string url =
            "https://" + std::string(one.host) + ":" + std::to_string(server.Port()) + "/";
        const auto row = &one - cases;
        browser.Load(url);
        EXPECT_EQ(one.outcome.second, browser.HasDocument() ? browser.Source() : browser.Status())
            << row;
        EXPECT_EQ(one.outcome != page, server.Requests().empty()) << row;
        if (isBuiltin) {
            EXPECT_EQ(one.outcome, FailureOfUrl(url)) << row;
        }
    }
}

TEST(Failure, OfAFileOfTrustedCertificatesThatCannotBeUsed) {
    const TemporaryHome home;
    const std::string good = Certificate::Authority().Pem();
    home.WriteFile("none.pem", "");
    home.WriteFile("broken.pem", good + "-----BEGIN CERTIFICATE-----\nMIIB\n" + good);
    TestServer server;
    server.Set("/", Redirect(302, "https://127.0.0.1:1/"));
    const std::pair<const char*, const char*> cases[] = {
        {"missing.pem", "No such file or directory"},
        {"none.pem", "it holds no certificate in PEM"},
        {"broken.pem", "its PEM block 2 is broken"},
        {"", "it is not a regular file"}};
    for (const auto& [name, reason] : cases) {
        const std::string path = home.Path(name);
        const ScopedVariable trust("ZRHTTP_CA_FILE", path.c_str());
        const std::string outcome =
            "the certificates of ZRHTTP_CA_FILE cannot be used: " + path + ": " + reason;
        EXPECT_EQ(outcome, StatusOfFailure("https://127.0.0.1:1/"));
        for (const std::string& url : {std::string("https://127.0.0.1:1/"), server.Url("/")})
            EXPECT_EQ(std::pair(ERROR_INTERNET_INVALID_CA, outcome), FailureOfUrl(url));
    }
}

TEST(Failure, MalformedUrls) {
    const struct {
        std::u16string url;
        const char* status;
    } cases[] = {
        {u"", "the URL is empty"},
        {u"  ", "the URL is empty"},
        {u"ftp://host/x", "scheme \"ftp\" is not supported: use http, https or file"},
        {u"javascript:alert(1)", "scheme \"javascript\" is not supported: use http, https or file"},
        {u"http:///path", "the URL names no host"},
        {u"http://a b/", "the host name in the URL holds a blank"},
        {u"http://host:99999/", "the URL is malformed"},
        {u"http://host/a\r\nb", "the URL holds a control character"},
        {std::u16string(u"http://host/\0x", 14), "the URL holds a control character"},
        {u"file://server/share", "a file URL must name an absolute path on this computer"},
        {u"http://host/" + std::u16string(65'536, u'a'),
         "the URL is longer than 65536 characters"}};
    DiagnosticRecorder recorder;
    TestBrowser browser;
    for (const auto& one : cases) {
        EXPECT_EQ(E_INVALIDARG, browser.Navigate(one.url)) << one.status;
        EXPECT_EQ(one.status, browser.Status());
        EXPECT_FALSE(browser.IsBusy());
    }
    EXPECT_EQ(std::size(cases), recorder.Failures().size());
}

TEST(Failure, MalformedHeaderBlocks) {
    const struct {
        std::string block;
        const char* status;
    } cases[] = {
        {"A: 1\nB: 2\r\n", "the header block holds a stray CR, LF or NUL"},
        {"A: 1\rB: 2\r\n", "the header block holds a stray CR, LF or NUL"},
        {std::string("A: 1\0\r\n", 7), "the header block holds a stray CR, LF or NUL"},
        {"A: 1\r\nno colon\r\n", "the header block holds a line without \":\""},
        {"A: 1\r\n\r\nB: 2\r\n", "the header block holds a line without \":\""},
        {"A B: 1\r\n", "the header block holds an invalid field name"},
        {": 1\r\n", "the header block holds an invalid field name"},
        {"Transfer-Encoding: chunked\r\n", "the header block must not set Transfer-Encoding"},
        {"content-length: 4\r\n",
         "the Content-Length in the header block is not the length of the data"}};
    TestBrowser browser;
    for (const auto& one : cases) {
        EXPECT_EQ(E_INVALIDARG, browser.Navigate("http://127.0.0.1/", "data!", one.block));
        EXPECT_EQ(one.status, browser.Status());
    }
}

TEST(Failure, RecordsHoldNoSecrets) {
    DiagnosticRecorder recorder;
    TestBrowser browser;
    RawServer server;
    const std::string host = "127.0.0.1:" + std::to_string(server.Port());
    browser.Load("http://user:geheim@" + host + "/?pin=geheim", "pin=geheim", "X-Pin: geheim\r\n");
    EXPECT_EQ("http://" + host + "/?pin=geheim", browser.Location());
    browser.Navigate("http://user:geheim@a b/");
    browser.Navigate("http://host/", "", "geheim\r\n");
    ASSERT_EQ(3u, recorder.Failures().size());
    for (const std::string& text : recorder.Failures())
        EXPECT_EQ(std::string::npos, text.find("geheim")) << text;
}

TEST(Failure, Offline) {
    TestServer server;
    TestBrowser browser;
    ASSERT_EQ(S_OK, browser->put_Offline(VARIANT_TRUE));
    browser.Load(server.Url("/echo"));
    EXPECT_FALSE(browser.HasDocument());
    EXPECT_EQ("browser is offline", browser.Status());
    EXPECT_TRUE(server.Requests().empty());
    ASSERT_EQ(S_OK, browser->put_Offline(VARIANT_FALSE));
    browser.Load(server.Url("/echo"));
    EXPECT_TRUE(browser.HasDocument());
    EXPECT_EQ("", browser.Status());
}

} // namespace
} // namespace platform_test
