// Frames and refreshes: what is loaded, and the order of events.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "browser/builtin/GumboTree.h"
#include "platform/browser/BrowserSink.h"
#include "platform/browser/TestBrowser.h"
#include "support/DiagnosticRecorder.h"
#include "support/PumpUntil.h"
#include "support/RawServer.h"
#include "support/TemporaryHome.h"
#include "support/TestServer.h"

namespace platform_test {
namespace {

using namespace test_support;
using testing::ElementsAre;
using testing::EndsWith;
using testing::UnorderedElementsAre;

class Frames : public testing::Test {
protected:
    Frames() { m_sink->Connect(*m_browser); }
    ~Frames() override { m_sink->Disconnect(); }

    void Load(const std::string& path) { m_browser.Load(m_server.Url(path)); }
    // Those events that end with the text.
    std::vector<std::string> EventsOf(const std::string& path) const {
        std::vector<std::string> events;
        for (const std::string& event : m_sink->events)
            if (event.ends_with(" " + path)) events.push_back(event);
        return events;
    }

    TestServer m_server;
    TestBrowser m_browser;
    const CComPtr<BrowserSink> m_sink = MakeObject<BrowserSink>();
};

TEST_F(Frames, APageWithoutFrames) {
    m_server.Set("/", Html("page"));
    m_browser.Load(m_server.Url("/"), "a=1", "Content-Type: text/x\r\n");
    EXPECT_THAT(m_sink->events, ElementsAre("before /", "navigated /", "complete /"));
    EXPECT_THAT(m_sink->sources, ElementsAre("page"));
    EXPECT_THAT(m_sink->postData, ElementsAre("a=1"));
    EXPECT_THAT(m_sink->headers, ElementsAre("Content-Type: text/x\r\n"));
}

TEST_F(Frames, EachCompletesBeforeThePageThatHoldsIt) {
    m_server.Set("/", Html("<frameset><frame src=a.htm><frame src='/b'></frameset>"));
    m_server.Set("/a.htm", Html("<IFRAME SRC=c></IFRAME>"));
    m_server.Set("/b", Bytes("text/plain", "plain"));
    m_server.Set("/c", Html("deep"));
    m_browser.Load(m_server.Url("/"), "a=1", "X-Own: 1\r\n");
    EXPECT_THAT(EventsOf("/"), ElementsAre("before /", "navigated /", "complete /"));
    EXPECT_EQ("complete /", m_sink->events.back());
    EXPECT_EQ(12u, m_sink->events.size());
    for (const std::string path : {"/a.htm", "/b", "/c"}) {
        EXPECT_THAT(EventsOf(path), ElementsAre("frame before " + path, "frame navigated " + path,
                                                "frame complete " + path));
        const ReceivedRequest request = m_server.Requests(path).at(0);
        EXPECT_EQ("GET", request.method);
        EXPECT_EQ("(none)", request.Header("X-Own"));
    }
    const auto position = [&](const char* event) {
        return std::find(m_sink->events.begin(), m_sink->events.end(), event);
    };
    EXPECT_LT(position("frame before /a.htm"), position("frame before /b"));
    EXPECT_LT(position("frame complete /c"), position("frame complete /a.htm"));
    EXPECT_THAT(m_sink->sources, testing::Contains("deep"));
}

TEST_F(Frames, AreLoadedSideBySide) {
    const auto gate = std::make_shared<Gate>();
    Answer waiting = Html("frame");
    waiting.gate = gate;
    m_server.Set("/", Html("<iframe src=1></iframe><iframe src=2></iframe>"));
    m_server.Set("/1", waiting);
    m_server.Set("/2", waiting);
    ASSERT_EQ(S_OK, m_browser.Navigate(m_server.Url("/")));
    PumpUntil([&] { return m_server.Requests().size() == 3; }, "both frames requested");
    EXPECT_EQ(READYSTATE_INTERACTIVE, m_browser.State());
    EXPECT_EQ("<iframe src=1></iframe><iframe src=2></iframe>", m_browser.Source());
    gate->Open();
    m_browser.WaitUntilDone();
    EXPECT_EQ("complete /", m_sink->events.back());
}

TEST_F(Frames, WhatHasNoPageOfItsOwnIsLeftOut) {
    m_server.Set("/dir/", Html("<!-- <iframe src=comment></iframe> --><base href='/base/'>"
                               "<script>var a = \"<iframe src=script></iframe>\";</script>"
                               "<template><iframe src=template></iframe></template>"
                               "<iframe></iframe><iframe src=''></iframe><iframe src=' '></iframe>"
                               "<iframe src='about:blank'></iframe>"
                               "<iframe src='javascript:alert(1)'></iframe>"
                               "<iframe src='file:///etc/hostname'></iframe>"
                               "<iframe src='ftp://host/'></iframe><iframe src='#top'></iframe>"
                               "<iframe src=doc srcdoc='text'></iframe>"
                               "<iframe src='/dir/#self'></iframe><iframe src='a&amp;b \xFC'>"));
    m_server.Set("/base/", Html("<iframe src='/dir/'>"));
    Load("/dir/");
    std::vector<std::string> targets;
    for (const ReceivedRequest& request : m_server.Requests())
        targets.push_back(request.target);
    EXPECT_THAT(targets, testing::UnorderedElementsAre("/dir/", "/base/", "/base/a&b%20%C3%BC"));
}

TEST_F(Frames, FailedOnesDoNotFailThePage) {
    Answer data = Bytes("application/x-data", "1");
    m_server.Set("/", Html("<iframe src='http://127.0.0.1:1/refused'></iframe><iframe src=data>"));
    m_server.Set("/data", data);
    Load("/");
    EXPECT_THAT(EventsOf("/refused"),
                ElementsAre("frame before /refused", "frame navigated /refused",
                            "frame complete /refused"));
    EXPECT_THAT(m_sink->sources,
                testing::UnorderedElementsAre("(none)", "(none)", m_browser.Source()));
    EXPECT_EQ("", m_browser.Status());
}

TEST_F(Frames, CancelledOnesAreNotRequested) {
    m_server.Set("/", Html("<iframe src=bad></iframe><iframe src=good></iframe>"));
    m_sink->cancelPath = "/bad";
    Load("/");
    EXPECT_THAT(EventsOf("/bad"), ElementsAre("frame before /bad"));
    EXPECT_EQ(3u, EventsOf("/good").size());
    EXPECT_TRUE(m_server.Requests("/bad").empty());
    EXPECT_EQ("complete /", m_sink->events.back());
}

TEST_F(Frames, AreBoundedInNumberAndDepth) {
    std::string many;
    for (int index = 0; index < 200; ++index)
        many += "<iframe src=leaf></iframe>";
    m_server.Set("/many", Html(many));
    m_server.Set("/leaf", Html("leaf"));
    Load("/many");
    EXPECT_EQ(128u, m_server.Requests("/leaf").size());
    for (int depth = 0; depth < 12; ++depth)
        m_server.Set("/nest" + std::to_string(depth),
                     Html("<iframe src=nest" + std::to_string(depth + 1) + "></iframe>"));
    Load("/nest0");
    EXPECT_EQ(1u, m_server.Requests("/nest8").size());
    EXPECT_EQ(0u, m_server.Requests("/nest9").size());
}

TEST_F(Frames, AreBoundedInBytesTogether) {
    const TemporaryHome home;
    RawServer server;
    home.WriteFile("page.htm", "<iframe src=big.txt></iframe><iframe src=big.txt></iframe>"
                               "<iframe src='" +
                                   server.Url("/20") +
                                   "'></iframe>"
                                   "<iframe src='" +
                                   server.Url("/20") + "'></iframe>");
    home.WriteFile("big.txt", "");
    std::filesystem::resize_file(home.Path("big.txt"), 230 << 20);
    server.Set("/20",
               "HTTP/1.1 200 OK\r\nContent-Type: text/plain\r\n\r\n" + std::string(20 << 20, 'x'));
    TestBrowser browser;
    DiagnosticRecorder recorder;
    browser.Load("file://" + home.Path("page.htm"));
    EXPECT_TRUE(browser.HasDocument());
    const std::string reason = ": the page with its frames is larger than 268435456 bytes";
    EXPECT_THAT(recorder.Failures(),
                UnorderedElementsAre(EndsWith("big.txt" + reason), EndsWith("/20" + reason)));
}

TEST_F(Frames, DeepDocumentsAreShownWithoutFrames) {
    std::string deep;
    for (int index = 0; index < 300'000; ++index)
        deep += "<div>";
    m_server.Set("/deep", Bytes("text/html", deep + "<iframe src=x></iframe>"));
    Load("/deep");
    EXPECT_EQ(READYSTATE_COMPLETE, m_browser.State());
    EXPECT_TRUE(m_browser.Source() == deep + "<iframe src=x></iframe>");
    EXPECT_TRUE(m_server.Requests("/x").empty());
}

TEST(GumboTree, IsGivenUpWhenItCostsTooMuch) {
    // Nested deeper than the tags alone tell: ends that close nothing.
    std::string sly;
    for (int index = 0; index < 100'000; ++index)
        sly += "<div><object></div></object>";
    int visits = 0;
    const auto visit = [&](const GumboNode&) { ++visits; };
    EXPECT_FALSE(platform::VisitGumboTree(sly, visit, {std::chrono::milliseconds(50), 1 << 30}));
    EXPECT_FALSE(platform::VisitGumboTree(sly, visit, {std::chrono::seconds(60), 1 << 20}));
    std::string hollow;
    while (hollow.size() < 5'000'000)
        hollow += "<p a>";
    EXPECT_FALSE(platform::VisitGumboTree(hollow, visit, {std::chrono::seconds(60)}));
    EXPECT_EQ(0, visits);
    std::string ordinary = "<table>";
    while (ordinary.size() < 16'700'000)
        ordinary += "<tr class='odd'><td>24.11.2026</td><td><a href='/statement?id=1&amp;page=2'>"
                    "Rechnung 4711, Muster AG</a></td><td><b>-1'234.55</b></td></tr>\n";
    EXPECT_TRUE(platform::VisitGumboTree(ordinary, visit, {std::chrono::seconds(60)}));
    EXPECT_EQ(1, visits);
}

TEST_F(Frames, AnImmediateRefreshLeavesThePageWithoutStateFour) {
    m_server.Set("/", Html("<meta http-equiv=Refresh content=\" 0;URL='next?a=1&amp;b=2'\">first"));
    m_server.Set("/next", Html("second"));
    std::vector<READYSTATE> states;
    m_sink->onEvent = [&](const std::string&) { states.push_back(m_browser.State()); };
    m_browser.Load(m_server.Url("/"), "secret", "X-Own: 1\r\n");
    EXPECT_EQ("second", m_browser.Source());
    EXPECT_THAT(m_sink->events,
                ElementsAre("before /", "navigated /", "complete /", "before /next?a=1&b=2",
                            "navigated /next?a=1&b=2", "complete /next?a=1&b=2"));
    EXPECT_THAT(states, ElementsAre(1, 2, 3, 1, 2, 4));
    EXPECT_EQ("GET", m_server.Requests("/next").at(0).method);
    EXPECT_EQ("(none)", m_server.Requests("/next").at(0).Header("X-Own"));
}

TEST_F(Frames, RefreshByHeaderAndInFrames) {
    Answer first = Html("first");
    first.headers = {{"Refresh", "0; url=/page"}};
    m_server.Set("/", first);
    m_server.Set("/page", Html("<iframe src=frame></iframe>"));
    m_server.Set("/frame", Html("<meta http-equiv=refresh content='0; end'>"));
    m_server.Set("/end", Html("end"));
    Load("/");
    EXPECT_EQ(m_server.Url("/page"), m_browser.Location());
    EXPECT_EQ(3u, EventsOf("/frame").size());
    EXPECT_THAT(EventsOf("/end"),
                ElementsAre("frame before /end", "frame navigated /end", "frame complete /end"));
    EXPECT_EQ("complete /page", m_sink->events.back());
}

TEST_F(Frames, EndlessRefreshEnds) {
    m_server.Set("/", Html("<meta http-equiv=refresh content=0>"));
    Load("/");
    EXPECT_EQ(11u, m_server.Requests("/").size());
    EXPECT_TRUE(m_browser.HasDocument());
    EXPECT_EQ("more than 10 immediate refreshes in a row; the last page stays", m_browser.Status());
}

TEST_F(Frames, ALaterRefreshComesUnlessStopped) {
    m_server.Set("/", Html("<meta http-equiv=refresh content='1; next'>"));
    m_server.Set("/next", Html("next"));
    Load("/");
    EXPECT_EQ(READYSTATE_COMPLETE, m_browser.State());
    ASSERT_EQ(S_OK, m_browser->Stop());
    TestBrowser other;
    other.Load(m_server.Url("/"));
    PumpUntil([&] { return other.Location() == m_server.Url("/next"); }, "the refresh");
    EXPECT_EQ(m_server.Url("/"), m_browser.Location());
    EXPECT_EQ(1u, m_server.Requests("/next").size());
}

} // namespace
} // namespace platform_test
