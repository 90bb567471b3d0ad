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
