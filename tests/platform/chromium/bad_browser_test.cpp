// Browsers that do not behave, and starts under bad conditions: reported, and nothing left behind.

#include <csignal>

#include <gmock/gmock.h>
#include <platform/Browser.h>
#include <sys/resource.h>
#include <unistd.h>

#include "browser/chromium/ChromiumProcess.h"
#include "platform/chromium/BrowserProcesses.h"
#include "platform/chromium/StandIn.h"
#include "support/DiagnosticRecorder.h"
#include "support/Gate.h"
#include "support/Leftovers.h"
#include "support/RunTool.h"
#include "support/TestServer.h"

using namespace std::chrono_literals;
using namespace testing;
using platform::ChromiumProcess;
using platform::OwnedDescriptor;
using platform_test::BrowserProcesses;
using platform_test::NotingStandIn;
using platform_test::StandIn;
using test_support::PumpUntil;
using test_support::ScopedVariable;

namespace {

// Few more descriptors than are open now.
class FewDescriptors {
public:
    explicit FewDescriptors(rlim_t more) {
        for (int i = 0; i < 40; ++i) // a shell needs numbers beyond ten
            m_open.emplace_back(dup(0));
        getrlimit(RLIMIT_NOFILE, &m_before);
        rlimit few = m_before;
        few.rlim_cur = static_cast<rlim_t>(m_open.back().Get()) + 1 + more;
        setrlimit(RLIMIT_NOFILE, &few);
    }
    ~FewDescriptors() { setrlimit(RLIMIT_NOFILE, &m_before); }
    FewDescriptors(const FewDescriptors&) = delete;
    FewDescriptors& operator=(const FewDescriptors&) = delete;

private:
    std::vector<OwnedDescriptor> m_open;
    rlimit m_before{};
};

std::string Event(const char* pszMethod, const nlohmann::json& params) {
    return nlohmann::json{{"method", pszMethod}, {"params", params}, {"sessionId", "S"}}.dump() +
           '\0';
}

std::string Data(const char* pszRequest, int bytes) {
    return Event("Network.dataReceived", {{"requestId", pszRequest}, {"dataLength", bytes}});
}

// The document L of the frame T, or the document and frame named F, has its head and is shown.
std::string Shown(const char* pszLoader, const char* pszFrame) {
    const std::string url = std::string("http://host/") + pszLoader;
    const nlohmann::json ids{{"frameId", pszFrame}, {"loaderId", pszLoader}, {"url", url}};
    nlohmann::json response{{"requestId", pszLoader}, {"type", "Document"}};
    response["response"] = {{"url", url}, {"headers", {{"Content-Type", "text/html"}}}};
    nlohmann::json frame{{"id", pszFrame}, {"loaderId", pszLoader}, {"url", url}};
    if (std::string("T") != pszFrame) frame["parentId"] = "T";
    return Event("Page.frameStartedNavigating", ids) + Event("Network.responseReceived", response) +
           Event("Page.frameNavigated", {{"frame", frame}});
}

std::string Stopped(const char* pszFrame) {
    return Event("Page.frameStoppedLoading", {{"frameId", pszFrame}});
}

// Answers every command, but no script of a renderer that is not alive. A navigation comes with the
// one messages, the source of its page with those of the end behind it.
class PageStandIn {
public:
    PageStandIn(const std::string& messages, const std::string& end, bool isAlive)
        : m_browser(
              "#!/bin/bash\n"
              "while IFS= read -r -d '' line; do id=${line#*:}; id=${id%%,*}\n"
              "case $line in\n"
              "*Target.createTarget*) cat \"$0.page\";;\n"
              "*Runtime.evaluate*) " +
              std::string(isAlive ? "" : "continue") +
              ";;\n"
              "*Page.navigate*) cat \"$0.messages\";;\n"
              "esac\n"
              "printf '{\"id\":%s,\"result\":{\"browserContextId\":\"C\",\"body\":\"cGFnZQ==\","
              "\"base64Encoded\":true}}\\0' \"$id\"\n"
              "case $line in *getResponseBody*) cat \"$0.end\";; esac\n"
              "done <&3 >&4\n") {
        nlohmann::json page{{"sessionId", "S"}};
        page["targetInfo"] = {{"targetId", "T"}, {"type", "page"}};
        const nlohmann::json attached{{"method", "Target.attachedToTarget"}, {"params", page}};
        std::ofstream(m_browser.Path() + ".page") << attached.dump() << '\0';
        std::ofstream(m_browser.Path() + ".messages") << messages;
        std::ofstream(m_browser.Path() + ".end") << end;
    }

private:
    StandIn m_browser;
};

// The status text at the end of a page: empty when it has been read.
std::string EndOfPage(const std::string& messages, const std::string& end, bool isAlive = true) {
    const PageStandIn chromium(messages, end, isAlive);
    const ScopedVariable headless("ZRHTTP_HEADLESS", "1");
    CComPtr<IWebBrowser2> browser;
    EXPECT_EQ(S_OK, CoCreateInstance(CLSID_InternetExplorer, nullptr, CLSCTX_LOCAL_SERVER,
                                     IID_IWebBrowser2, reinterpret_cast<void**>(&browser)));
    if (!browser) return "no browser";
    COleVariant url{CString("http://host/L")};
    EXPECT_EQ(S_OK, browser->Navigate2(&url, nullptr, nullptr, nullptr, nullptr));
    READYSTATE state = 0;
    PumpUntil(
        [&] { return SUCCEEDED(browser->get_ReadyState(&state)) && state == READYSTATE_COMPLETE; },
        "the end of the page");
    CComBSTR text;
    browser->get_StatusText(&text);
    CComPtr<IDispatch> document;
    EXPECT_EQ(SUCCEEDED(browser->get_Document(&document)), text.ToAnsi().IsEmpty());
    browser->Quit();
    return std::string(text.ToAnsi().View());
}

} // namespace

TEST(BadStart, WithoutDescriptorsItSaysSoAndLeavesNothing) {
    const test_support::ProfileDirectories profiles;
    const StandIn browser("#!/bin/sh\n[ -e /proc/self/fd/3 ] && echo whole >&2\n");
    int failures = 0;
    for (rlim_t more = 0; more < 30; ++more) {
        std::string error;
        std::shared_ptr<ChromiumProcess> process;
        {
            const FewDescriptors few(more);
            process = ChromiumProcess::Launch(std::nullopt, error);
        }
        if (!process) {
            ++failures;
            EXPECT_THAT(error, HasSubstr("Too many open files")) << more;
            continue;
        }
        PumpUntil([&] { return !process->Connection().IsOpen(); }, "its end");
        EXPECT_EQ(process->Connection().ErrorOutput(), "whole\n") << more;
    }
    EXPECT_GE(failures, 8) << "six pipes";
    EXPECT_LT(failures, 30);
    EXPECT_THAT(profiles.LeftBehind(), IsEmpty());
}

TEST(BadStart, NeedsNoSearchPath) {
    const NotingStandIn browser("echo words >&2\n");
    const ScopedVariable path("PATH", "/nonexistent");
    std::string error;
    auto process = ChromiumProcess::Launch(std::nullopt, error);
    ASSERT_NE(process, nullptr) << error;
    PumpUntil([&] { return !process->Connection().IsOpen(); }, "its end");
    EXPECT_EQ(process->Connection().ErrorOutput(), "words\n");
    EXPECT_TRUE(browser.IsGoneWithin(5s));
}

TEST(BadBrowser, IsReportedAndLeavesNothing) {
    const std::pair<const char*, const char*> cases[] = {
        {"echo no luck >&2", "Chromium ended at once; its last output: no luck"},
        {"printf half >&4", "Chromium ended at once"},
        {"printf 'garbage\\0' >&4; exec cat <&3", "no DevTools message"},
        {"exec 4>&-; exec cat <&3", "Chromium ended at once"},
        {R"(printf '{"id":1,"result":7}\0{"id":2,"result":[]}\0' >&4; exec cat <&3)",
         "Chromium does not answer"},
        {R"(printf '{"id":2,"error":{"message":"not today"}}\0' >&4; exec cat <&3)",
         "Chromium: not today"},
    };
    for (const auto& [script, failure] : cases) {
        const NotingStandIn browser(script);
        const test_support::DiagnosticRecorder recorder;
        CComPtr<IWebBrowser2> object;
        EXPECT_TRUE(FAILED(CoCreateInstance(CLSID_InternetExplorer, nullptr, CLSCTX_LOCAL_SERVER,
                                            IID_IWebBrowser2, reinterpret_cast<void**>(&object))));
        EXPECT_FALSE(object) << script;
        EXPECT_THAT(recorder.Failures(), Contains(HasSubstr(failure)));
        EXPECT_TRUE(browser.IsGoneWithin(5s)) << script;
    }
}

TEST(BadPage, IsNotTakenForWhole) {
    const std::string page = Shown("L", "T");
    const std::string loadEvent = Event("Page.loadEventFired", {{"timestamp", 1}}) + Stopped("T");
    const std::string crash = Event("Inspector.targetCrashed", nlohmann::json::object());
    EXPECT_EQ(EndOfPage(page, loadEvent), "");
    EXPECT_EQ(EndOfPage(page, Stopped("T")), "") << "it has stopped its own loading";
    EXPECT_EQ(EndOfPage(page, Stopped("T") + crash, false), "the page's process has ended");

    const std::string large = "the page is larger than 268435456 bytes";
    EXPECT_EQ(EndOfPage(page + Data("L", 268'435'456), loadEvent), "");
    EXPECT_EQ(EndOfPage(page + Data("L", 268'435'456) + Data("L", 1), ""), large);
    const std::string frame = Shown("F", "F") + Data("F", 300'000'000);
    EXPECT_EQ(EndOfPage(page + frame, Stopped("T")), "") << "the frame alone has failed";
    const std::string loaded = "the page loads more than 536870912 bytes";
    EXPECT_EQ(EndOfPage(page + frame + Data("image", 200'000'000) + Data("script", 36'870'913), ""),
              loaded);
}

TEST(BadStart, NothingOutlivesAToolThatIsEndedOnAnUnendingPage) {
    const std::string chromium = platform::FindChromium().value();
    const std::pair<int, bool> cases[] = {// the signal, and whether the browser hangs
                                          {SIGKILL, false},
                                          {SIGABRT, false},
                                          {SIGINT, false},
                                          {SIGKILL, true}};
    for (const auto& [signal, isHanging] : cases) {
        const auto gate = std::make_shared<test_support::Gate>();
        test_support::TestServer server;
        test_support::Answer answer = test_support::Html("");
        answer.pieces = {"<p>", "</p>"};
        answer.pieceGate = gate;
        server.Set("/", answer);
        const NotingStandIn browser("exec '" + chromium + "' \"$@\"\n");
        test_support::ToolProcess tool(
            {"fetch", server.Url("/"), "--via", "application", "--engine", "chromium"});
        const BrowserProcesses processes(browser.Note("profile"));
        PumpUntil([&] { return !server.Requests("/").empty(); }, "the request");
        if (isHanging) kill(processes.Browser(), SIGSTOP);
        tool.Signal(signal);
        EXPECT_NE(tool.Wait().exitStatus, 0);
        EXPECT_TRUE(processes.AreGoneWithin(5)) << signal << (isHanging ? " beside a hang" : "");
        gate->Open();
    }
}
