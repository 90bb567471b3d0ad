// Starting and ending the browser process, whoever goes first.

#include <csignal>
#include <cstdio>
#include <filesystem>
#include <iostream>

#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include "browser/chromium/ChromiumProcess.h"
#include "browser/chromium/SpawnProgram.h"
#include "platform/chromium/BrowserProcesses.h"
#include "platform/chromium/StandIn.h"
#include "support/PumpUntil.h"
#include "support/ScopedVariable.h"
#include "support/TemporaryHome.h"
#include "support/TestServer.h"

using namespace std::chrono_literals;
using namespace std::string_literals;
using nlohmann::json;
using platform::ChromiumProcess;
using platform::DevToolsReply;
using platform::OwnedDescriptor;
using platform_test::BrowserProcesses;
using platform_test::StandIn;
using test_support::Certificate;
using test_support::PumpFor;
using test_support::PumpUntil;
using test_support::ScopedVariable;
using test_support::TemporaryHome;
using testing::HasSubstr;
using testing::Not;

namespace {

using Launched = std::shared_ptr<ChromiumProcess>;

Launched Launch(const std::optional<std::string>& display = std::nullopt) {
    std::string error;
    auto process = ChromiumProcess::Launch(display, error);
    if (!process) throw std::runtime_error(error);
    return process;
}

std::string LaunchFailure() {
    std::string error;
    EXPECT_EQ(ChromiumProcess::Launch(std::nullopt, error), nullptr);
    return error;
}

// Serves messages until the browser has answered.
DevToolsReply Call(const Launched& process, const char* pszMethod, const json& params,
                   const std::string& session = "") {
    std::optional<DevToolsReply> answer;
    process->Connection().Send(
        session, pszMethod, params, [&](DevToolsReply& reply) { answer = std::move(reply); }, 20s);
    PumpUntil([&] { return answer.has_value(); }, pszMethod);
    return answer ? *answer : DevToolsReply{{}, "nothing heard"};
}

std::string Product(const Launched& process) {
    return Call(process, "Browser.getVersion", json::object()).result.value("product", "");
}

// What the navigation of a new page fails with; empty when it does not.
std::string NavigationError(const Launched& process, const std::string& url) {
    const json target = Call(process, "Target.createTarget", {{"url", "about:blank"}}).result;
    const json session = Call(process, "Target.attachToTarget",
                              {{"targetId", target.at("targetId")}, {"flatten", true}})
                             .result;
    const DevToolsReply reply =
        Call(process, "Page.navigate", {{"url", url}}, session.at("sessionId"));
    return reply.error + reply.result.value("errorText", "");
}

std::size_t OpenDescriptors() {
    const std::filesystem::directory_iterator all("/proc/self/fd");
    return static_cast<std::size_t>(std::distance(begin(all), end(all)));
}

// What the browser's stand-in writes to its standard error until it ends.
std::string OutputOf(const std::optional<std::string>& display = std::nullopt) {
    const auto process = Launch(display);
    bool hasEnded = false;
    process->Connection().SetEndHandler([&] { hasEnded = true; });
    PumpUntil([&] { return hasEnded; }, "its end");
    return process->Connection().ErrorOutput();
}

// This test program once more, running one of the Client tests below.
class ClientProgram {
public:
    explicit ClientProgram(const std::string& test) {
        int ends[2];
        if (pipe2(ends, O_CLOEXEC) != 0) throw std::runtime_error("no pipe");
        const OwnedDescriptor output(ends[1]);
        m_output = fdopen(ends[0], "r");
        m_process = platform::StartProgram({{"/proc/self/exe", "--gtest_also_run_disabled_tests",
                                             "--gtest_filter=Client.DISABLED_" + test},
                                            {{output.Get(), 1}},
                                            {}})
                        .value();
    }
    ~ClientProgram() { fclose(m_output); }
    ClientProgram(const ClientProgram&) = delete;
    ClientProgram& operator=(const ClientProgram&) = delete;

    // The profile directory of the browser that it has started.
    std::string ReadProfile() {
        char line[512];
        while (fgets(line, sizeof line, m_output))
            if (const std::string text = line; text.starts_with("profile "))
                return text.substr(8, text.size() - 9);
        throw std::runtime_error("the client has started no browser");
    }
    int WaitForEnd() {
        int status = 0;
        waitpid(m_process, &status, 0);
        return status;
    }
    void Signal(int number) const { kill(m_process, number); }

private:
    TemporaryHome m_home; // its directories lie there, and are left when it is killed
    ScopedVariable m_temporary{"TMPDIR", m_home.Path().c_str()};
    FILE* m_output = nullptr;
    pid_t m_process = -1;
};

} // namespace

TEST(ChromiumProcess, AnswersWithoutAPortAndQuitsWithoutATrace) {
    const std::size_t descriptors = OpenDescriptors();
    auto process = Launch();
    EXPECT_THAT(Product(process), HasSubstr("Chrome/"));
    EXPECT_TRUE(process->IsHeadless());
    const BrowserProcesses processes(process->ProfileDirectory());
    EXPECT_GT(processes.All().size(), 3u);
    EXPECT_FALSE(processes.HasListeningSocket());
    struct stat profile {};
    ASSERT_EQ(stat(process->ProfileDirectory().c_str(), &profile), 0);
    EXPECT_EQ(profile.st_mode & 07777u, 0700u);
    EXPECT_EQ(OpenDescriptors(), descriptors + 5) << "three pipes, the life line, the wake-up";
    process->Quit();
    EXPECT_TRUE(processes.AreGoneWithin(5));
    process.reset();
    PumpUntil([&] { return OpenDescriptors() == descriptors; }, "closed descriptors");
}

TEST(ChromiumProcess, ManyStartsLeaveNothing) {
    const std::size_t descriptors = OpenDescriptors();
    std::vector<BrowserProcesses> all;
    for (int i = 0; i < 6; ++i) {
        const auto process = Launch();
        all.emplace_back(process->ProfileDirectory());
        // The others end while they start.
        if (i % 2 == 0) {
            EXPECT_NE(Product(process), "");
        }
    }
    for (const BrowserProcesses& processes : all)
        EXPECT_TRUE(processes.AreGoneWithin(5));
    PumpUntil([&] { return OpenDescriptors() == descriptors; }, "closed descriptors");
}

TEST(ChromiumProcess, AKilledBrowserFailsTheWaitingCallAtOnce) {
    const auto process = Launch();
    ASSERT_NE(Product(process), "");
    const BrowserProcesses processes(process->ProfileDirectory());
    kill(processes.Browser(), SIGSTOP);
    std::string error;
    process->Connection().Send("", "Browser.getVersion", json::object(),
                               [&](DevToolsReply& reply) { error = reply.error; });
    PumpFor(50ms);
    EXPECT_EQ(error, "");
    kill(processes.Browser(), SIGKILL);
    const auto killed = std::chrono::steady_clock::now();
    PumpUntil([&] { return !error.empty(); }, "the failure");
    EXPECT_LT(std::chrono::steady_clock::now() - killed, 1s);
    EXPECT_EQ(error, platform::kBrowserGone);
    EXPECT_TRUE(processes.AreGoneWithin(5)) << "also while the object lives";
}

TEST(ChromiumProcess, ABrowserThatHangsIsKilled) {
    auto process = Launch();
    ASSERT_NE(Product(process), "");
    const BrowserProcesses processes(process->ProfileDirectory());
    kill(processes.Browser(), SIGSTOP);
    const auto before = std::chrono::steady_clock::now();
    process.reset();
    EXPECT_LT(std::chrono::steady_clock::now() - before, 500ms) << "nobody waits for it";
    EXPECT_TRUE(processes.AreGoneWithin(5));
}

// Not tests: what the tests below start as programs of their own.
TEST(Client, DISABLED_Waits) {
    const auto process = Launch();
    ASSERT_NE(Product(process), "");
    std::cout << "profile " << process->ProfileDirectory() << std::endl;
    PumpFor(60s);
}

TEST(Client, DISABLED_ExitsWithoutQuitting) {
    static Launched process; // ends behind the platform's own objects
    process = Launch();
    ASSERT_NE(Product(process), "");
    std::cout << "profile " << process->ProfileDirectory() << std::endl;
    std::exit(0);
}

TEST(ChromiumProcess, NothingOutlivesAClientThatDies) {
    for (const int signal : {SIGKILL, SIGABRT}) {
        ClientProgram client("Waits");
        const BrowserProcesses processes(client.ReadProfile());
        client.Signal(signal);
        EXPECT_EQ(WTERMSIG(client.WaitForEnd()), signal);
        EXPECT_TRUE(processes.AreGoneWithin(5)) << "signal " << signal;
    }
}

TEST(ChromiumProcess, NothingOutlivesAClientThatDiesBesideAHangingBrowser) {
    ClientProgram client("Waits");
    const BrowserProcesses processes(client.ReadProfile());
    kill(processes.Browser(), SIGSTOP);
    client.Signal(SIGKILL);
    client.WaitForEnd();
    EXPECT_TRUE(processes.AreGoneWithin(5));
}

TEST(ChromiumProcess, AClientMayExitWithoutQuitting) {
    ClientProgram client("ExitsWithoutQuitting");
    const std::string profile = client.ReadProfile();
    const int status = client.WaitForEnd();
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << status;
    const auto isGone = [&] { return !std::filesystem::exists(profile); };
    PumpUntil(isGone, "the end of the profile directory");
}

TEST(ChromiumProcess, TheBrowserInheritsWhatItNeedsAndNothingElse) {
    const OwnedDescriptor open(dup(0)); // not marked as closed on exec
    const ScopedVariable authority("XAUTHORITY", nullptr);
    const ScopedVariable home("HOME", "/home/user");
    const ScopedVariable flags("CHROMIUM_FLAGS", "--remote-debugging-port=1");
    const ScopedVariable data("XDG_DATA_HOME", "/home/user/data");
    const ScopedVariable wayland("WAYLAND_DISPLAY", "wayland-0");
    const ScopedVariable proxy("http_proxy", "http://proxy.test");
    const StandIn browser("#!/bin/sh\necho arguments: $* >&2\nenv >&2\nls -x /proc/self/fd >&2\n");
    const std::string bare = OutputOf();
    EXPECT_THAT(bare, HasSubstr("\n0  1  2  3  4  5\n")) << "5 is the listing itself";
    EXPECT_THAT(bare, HasSubstr(" --headless"));
    EXPECT_THAT(bare, HasSubstr("\nHOME=/"));
    EXPECT_THAT(bare, HasSubstr("\nhttp_proxy=http://proxy.test\n"));
    for (const char* unwanted : {"\nCHROMIUM_FLAGS=", "\nXDG_", "\nWAYLAND", "\nHOME=/home/user"})
        EXPECT_THAT(bare, Not(HasSubstr(unwanted)));
    const std::string windowed = OutputOf(":77");
    EXPECT_THAT(windowed, HasSubstr("\nDISPLAY=:77\n"));
    EXPECT_THAT(windowed, HasSubstr("\nXAUTHORITY=/home/user/.Xauthority\n"));
    EXPECT_THAT(windowed, Not(HasSubstr("--headless")));
}

TEST(ChromiumProcess, SaysWhyItCannotBeStarted) {
    {
        const StandIn noProgram("no program");
        EXPECT_THAT(OutputOf(), HasSubstr(noProgram.Path()));
        chmod(noProgram.Path().c_str(), 0644);
        EXPECT_EQ(LaunchFailure(), noProgram.Path() + " is not an executable file");
    }
    for (const char* path : {"/usr", "/nonexistent/browser"}) {
        const ScopedVariable setting("ZRHTTP_BROWSER", path);
        EXPECT_EQ(LaunchFailure(), path + " is not an executable file"s);
    }
    const ScopedVariable setting("ZRHTTP_BROWSER", nullptr);
    const ScopedVariable path("PATH", "/nonexistent:relative");
    EXPECT_EQ(LaunchFailure(),
              "Chromium was not found; install the package chromium or set ZRHTTP_BROWSER");
}

TEST(ChromiumProcess, TrustsTheFurtherCertificatesAndNoOthers) {
    const Certificate authority = Certificate::Authority();
    const Certificate stranger = Certificate::Authority();
    test_support::TestServer trusted(authority.Issue("127.0.0.1"));
    test_support::TestServer untrusted(stranger.Issue("127.0.0.1"));
    trusted.Set("/", test_support::Html("page"));
    untrusted.Set("/", test_support::Html("page"));
    const TemporaryHome home;
    home.WriteFile("authorities.pem", Certificate::Authority().Pem() + authority.Pem());
    const ScopedVariable setting("ZRHTTP_CA_FILE", home.Path("authorities.pem").c_str());
    const auto process = Launch();
    EXPECT_EQ(NavigationError(process, trusted.Url("/")), "");
    EXPECT_EQ(NavigationError(process, untrusted.Url("/")), "net::ERR_CERT_AUTHORITY_INVALID");
}
