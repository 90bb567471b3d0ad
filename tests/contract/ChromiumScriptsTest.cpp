// What the scripts of a page and the end of its browser come to through the getter.
#include <chrono>
#include <csignal>

#include <gmock/gmock.h>

#include <platform/Prompt.h>

#include "contract/ChromiumPages.h"
#include "support/ManualClock.h"
#include "support/PumpUntil.h"

using namespace test_support;
using testing::ElementsAre;

namespace {

// Notes what it is asked and declines.
class RecordingPrompt final : public platform::Prompt {
public:
    std::vector<std::string> texts;

    int Ask(const CString& strText, UINT nType) override {
        texts.emplace_back(strText.View());
        return nType == MB_OK ? IDOK : IDCANCEL;
    }
};

class Collecting : public ChromiumPages {
protected:
    // Waits take real time, idle time passes only when the test says so.
    class StillClock final : public ManualClock {
        bool WaitFor(std::unique_lock<std::mutex>& lock, std::condition_variable& changed, DWORD,
                     const std::function<bool()>& done) override {
            return changed.wait_for(lock, std::chrono::milliseconds(10), done);
        }
    };
    // A page that goes on to the next one, in the way of the script.
    std::string PageWithForm(const std::string& action, const std::string& name,
                             const std::string& script) {
        const std::string form =
            "<form method=post action=" + action + "><input name=a value=1></form>";
        const std::string submit = "document.forms[0].submit()";
        if (script == "onload") return name + "<body onload=\"" + submit + "\">" + form;
        if (script == "inline") return name + form + "<script>" + submit + "</script>";
        return name + form + "<script>setTimeout(function(){" + submit + "}, 0)</script>";
    }
};

class Dialogs : public ChromiumPages {
protected:
    RecordingPrompt m_prompt;
    const platform::ScopedService<platform::Prompt> m_installed{m_prompt};
};

using Written = ChromiumPages;

class LostBrowser : public ChromiumPages {
protected:
    using Clock = std::chrono::steady_clock;

    void SetUp() override {
        if (RunningChromiums().empty()) {
            ASSERT_EQ(Connect(), ZRHB_OK) << m_error.GetString();
        }
    }
    void Kill() {
        const std::vector<pid_t> browsers = RunningChromiums();
        EXPECT_EQ(browsers.size(), 1u);
        m_killed = Clock::now();
        for (const pid_t browser : browsers)
            ::kill(browser, SIGKILL);
    }
    DWORD Step() {
        DWORD nLength = 0;
        return Getter().TestRead(m_text, m_error, nLength, m_url, 0, FALSE);
    }
    // The next step tells that the browser has gone, the one after it that there is no page.
    void ExpectLoss() {
        DWORD code = 0;
        PumpUntil([&] { return (code = Step()) >= ZRHB_CONNECT_FAILED; }, "the loss");
        EXPECT_EQ(code, ZRHB_BROWSER_GONE);
        EXPECT_STREQ(m_error, "Read failed because: Connection got lost.");
        EXPECT_EQ(Step(), ZRHB_NO_OPEN_PAGE);
        EXPECT_LT(Clock::now() - m_killed, std::chrono::seconds(1));
    }

    // As the callback of a read, at the second pass of its wait.
    static int KillWhenAsked(void* context, unsigned long) {
        auto& self = *static_cast<LostBrowser*>(context);
        if (++self.m_passes == 2) self.Kill();
        return 0;
    }

    Clock::time_point m_killed = Clock::now();
    int m_passes = 0;
};

} // namespace

TEST_F(Collecting, TakesEveryPageOfAChainUntilTheBrowserStaysIdle) {
    struct {
        StillClock clock;
        CStringArray pages;
        int passes = 0;
    } chain;
    const platform::ScopedService<platform::Clock> installed(chain.clock);
    for (const char* script : {"onload", "inline", "timeout"}) {
        const auto served = [&](const std::string& path, const std::string& body) {
            Server().Set(path, Html(body));
            return Server().Url(path) + " " + body;
        };
        std::vector<std::string> expected;
        for (int index = 1; index < 5; ++index)
            expected.push_back(
                served("/" + std::to_string(index),
                       PageWithForm("/" + std::to_string(index + 1), script, script)));
        expected.push_back(served("/5", "the last one"));

        ASSERT_EQ(Open(Server().Url("/1"), TRUE), ZRHB_OK);
        // A busy machine can leave the browser idle for long between two pages, so time passes
        // behind the last one only.
        const auto passTime = [](void* context, unsigned long) {
            auto& [clock, pages, passes] = *static_cast<decltype(chain)*>(context);
            if (pages.GetSize() == 5) clock.Advance(1000);
            return ++passes == 3000 ? 1 : 0;
        };
        CStringArray urls;
        chain.passes = 0;
        EXPECT_EQ(Getter().BusyRead(chain.pages, m_error, urls, 0, FALSE, 15'000, passTime, &chain),
                  ZRHB_IDLE_TIMEOUT);
        std::vector<std::string> collected;
        for (int index = 0; index < chain.pages.GetSize(); ++index)
            collected.emplace_back((urls[index] + " " + chain.pages[index]).View());
        EXPECT_EQ(collected, expected) << script;
    }
}

TEST_F(Collecting, StopsAnEndlessChainWhenItsCallbackWantsTo) {
    Server().Set("/endless", Html(PageWithForm("/endless", "again", "onload")));
    ASSERT_EQ(Open(Server().Url("/endless"), TRUE), ZRHB_OK);
    CStringArray pages;
    CStringArray urls;
    const auto stopAfterTen = [](void* server, unsigned long) {
        return static_cast<TestServer*>(server)->Requests("/endless").size() > 10 ? 1 : 0;
    };
    EXPECT_EQ(Getter().BusyRead(pages, m_error, urls, 0, FALSE, 0, stopAfterTen, &Server()),
              ZRHB_STOPPED);
    EXPECT_GT(pages.GetSize(), 3); // the browser is ahead of what has been handed out
    Getter().Close();
    const std::size_t requests = Server().Requests("/endless").size();
    PumpFor(std::chrono::milliseconds(100));
    EXPECT_LE(Server().Requests("/endless").size(), requests + 1);
}

TEST_F(Collecting, LetsWorkersRun) {
    const std::string waiting =
        "<script>new Worker('/worker.js').onmessage = () => location = '/done'</script>";
    Server().Set("/waiting", Html(waiting));
    Server().Set(
        "/worker.js",
        Bytes("text/javascript", "fetch('/told', {method: 'POST'}).then(() => postMessage(1))"));
    Server().Set("/told", Html("told"));
    Server().Set("/done", Html("done"));
    EXPECT_THAT(
        Collect(Server().Url("/waiting"), 2),
        ElementsAre(Server().Url("/waiting") + " " + waiting, Server().Url("/done") + " done"));
    EXPECT_EQ(Server().Requests("/told").size(), 1u);
}

TEST_F(Collecting, TakesFramesButNoPopUps) {
    Server().Set("/one", Html("one"));
    Server().Set("/two", Html("two"));
    const std::string frames = "<iframe src=/one></iframe><iframe src=/two></iframe>";
    Server().Set("/frames", Html(frames));
    const auto documents = Collect(Server().Url("/frames"), 3);
    EXPECT_THAT(documents, testing::UnorderedElementsAre(Server().Url("/one") + " one",
                                                         Server().Url("/two") + " two",
                                                         Server().Url("/frames") + " " + frames));
    EXPECT_EQ(documents.back(), Server().Url("/frames") + " " + frames);

    const std::string opener = "<script>window.open('/pop-up')</script>";
    Server().Set("/opener", Html(opener));
    Server().Set("/pop-up", Html("pop-up"));
    EXPECT_THAT(Collect(Server().Url("/opener"), 1),
                ElementsAre(Server().Url("/opener") + " " + opener));
    EXPECT_EQ(Server().Requests("/pop-up").size(), 1u);
    EXPECT_EQ(FetchPath("/one"), "one");
}

TEST_F(Dialogs, AreAnsweredAndThePageIsRead) {
    Server().Set("/after", Html("after"));
    for (const std::string page :
         {"<body onload=\"alert('onload')\">text", "<script>alert('inline')</script>text",
          "<script>if (confirm('sure?')) location = '/after'</script>text",
          "<script>if (prompt('name?', 'x') !== null) location = '/after'</script>text",
          "<script>addEventListener('beforeunload', event => { event.preventDefault();"
          "event.returnValue = 'stay' })</script>text"}) {
        Server().Set("/page", Html(page));
        EXPECT_EQ(FetchPath("/page"), page);
    }
    EXPECT_EQ(FetchPath("/after"), "after");
    EXPECT_THAT(m_prompt.texts, ElementsAre("onload", "inline", "sure?", "name?"));
}

TEST_F(Written, FramesThatNobodyClosesHoldUpNoPage) {
    const std::string frame = "<iframe id=f></iframe>";
    const auto writing = [&](const std::string& text) {
        return frame + "<script>f.contentDocument.write('" + text + "')</script>";
    };
    Server().Set("/inner", Html(writing("open")));
    for (const std::string& page :
         {std::string("<iframe src=\"javascript:document.write('x')\"></iframe>"), writing("open"),
          "<iframe src=/inner></iframe>" + writing("<iframe src=/inner></iframe>"),
          frame + "<script>setTimeout(() => document.write('open'))</script>"}) {
        Server().Set("/page", Html(page));
        EXPECT_EQ(FetchPath("/page"), page);
    }
    // What has a request is waited for, in the page and in what was written.
    for (const std::string& page : {"<img src=/waiting>" + writing("open"),
                                    "<iframe src=/waiting></iframe>" + writing("open"),
                                    writing("<iframe src=/waiting></iframe>"),
                                    writing("<link rel=stylesheet href=/waiting>")}) {
        Answer waiting = Html("");
        waiting.gate = std::make_shared<Gate>();
        Server().Set("/waiting", waiting);
        Server().Set("/page", Html(page));
        const std::size_t before = Server().Requests("/waiting").size();
        EXPECT_EQ(Open(Server().Url("/page")), ZRHB_OK);
        PumpUntil([&] { return Server().Requests("/waiting").size() > before; }, "the request");
        PumpFor(std::chrono::milliseconds(200));
        DWORD nLength = 0;
        EXPECT_EQ(Getter().TestRead(m_text, m_error, nLength, m_url, 0, FALSE), ZRHB_STILL_LOADING)
            << page;
        waiting.gate->Open();
        EXPECT_EQ(Read(), ZRHB_OK) << page << m_error.GetString();
    }
}

TEST_F(LostBrowser, WhileNothingIsOpen) {
    Server().Set("/page", Html("page"));
    EXPECT_EQ(FetchPath("/page"), "page");
    Kill();
    PumpUntil([&] { return Open(Server().Url("/page")) != ZRHB_OK; }, "the loss");
    EXPECT_STREQ(m_error, "Open failed because: Connection got lost.");
    EXPECT_EQ(Open(Server().Url("/page")), ZRHB_OPEN_NOT_CONNECTED);
    EXPECT_EQ(Step(), ZRHB_NO_OPEN_PAGE);
    EXPECT_LT(Clock::now() - m_killed, std::chrono::seconds(1));

    ASSERT_EQ(Connect(), ZRHB_OK) << m_error.GetString();
    EXPECT_EQ(FetchPath("/page"), "page");
}

TEST_F(LostBrowser, WhileAPageLoadsOrIsOpen) {
    Answer waiting = Html("page");
    waiting.gate = std::make_shared<Gate>();
    Server().Set("/waiting", waiting);
    EXPECT_EQ(Open(Server().Url("/waiting")), ZRHB_OK);
    PumpUntil([&] { return !Server().Requests("/waiting").empty(); }, "the request");
    EXPECT_EQ(Step(), ZRHB_STILL_LOADING);
    Kill();
    ExpectLoss();

    ASSERT_EQ(Connect(), ZRHB_OK) << m_error.GetString();
    EXPECT_EQ(Open(Server().Url("/waiting")), ZRHB_OK);
    const DWORD code = Getter().BusyRead(m_text, m_error, m_url, 0, FALSE, 0, &KillWhenAsked, this);
    EXPECT_EQ(code, ZRHB_BROWSER_GONE) << m_error.GetString();
    EXPECT_LT(Clock::now() - m_killed, std::chrono::seconds(1));
    waiting.gate->Open();

    ASSERT_EQ(Connect(), ZRHB_OK) << m_error.GetString();
    Server().Set("/page", Html("page"));
    EXPECT_THAT(Collect(Server().Url("/page"), 1), ElementsAre(Server().Url("/page") + " page"));
    ASSERT_EQ(Open(Server().Url("/page"), TRUE), ZRHB_OK);
    PumpUntil([&] { return Step() == ZRHB_OK; }, "the page");
    Kill();
    ExpectLoss();
}

TEST_F(LostBrowser, WithAWindowThatWasOpenedForItsUser) {
    Server().Set("/page", Html("page"));
    ASSERT_EQ(
        Getter().OpenInNewWindow(CString(Server().Url("/echo")), m_error, CString("a=1"), nullptr),
        ZRHB_OK);
    EXPECT_EQ(Server().Requests("/echo").at(0).body, "a=1");
    EXPECT_EQ(Read(), ZRHB_READ_FAILED);
    EXPECT_EQ(FetchPath("/page"), "page");
    Getter().Disconnect(0);
    PumpFor(std::chrono::milliseconds(100));
    Kill(); // it has stayed
}
