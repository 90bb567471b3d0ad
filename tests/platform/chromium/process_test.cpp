// Starting and ending the browser process, whoever goes first.

#include <csignal>
#include <filesystem>

#include <gmock/gmock.h>
#include <sys/stat.h>
#include <unistd.h>

#include "browser/chromium/ChromiumProcess.h"
#include "browser/chromium/SpawnProgram.h"
#include "platform/chromium/BrowserProcesses.h"
#include "platform/chromium/StandIn.h"

using namespace platform_test;
using namespace std::chrono_literals;
using namespace std::string_literals;
using namespace test_support;
using namespace testing;
using nlohmann::json;
using platform::ChromiumProcess;
using platform::DevToolsReply;
using platform::OwnedDescriptor;

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

// A browser that has answered.
Launched LaunchAnswering() {
    auto process = Launch();
    std::string product;
    process->Connection().Send(
        "", "Browser.getVersion", json::object(),
        [&](DevToolsReply& reply) { product = reply.result.value("product", "none"); }, 20s);
    PumpUntil([&] { return !product.empty(); }, "the answer");
    EXPECT_THAT(product, HasSubstr("Chrome/"));
    return process;
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

} // namespace

TEST(ChromiumProcess, AnswersWithoutAPortAndQuitsWithoutATrace) {
    const std::size_t descriptors = OpenDescriptors();
    auto process = LaunchAnswering();
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
    for (int i = 0; i < 4; ++i) // every other one ends while it starts
        all.emplace_back((i % 2 ? Launch() : LaunchAnswering())->ProfileDirectory());
    for (const BrowserProcesses& processes : all)
        EXPECT_TRUE(processes.AreGoneWithin(5));
    PumpUntil([&] { return OpenDescriptors() == descriptors; }, "closed descriptors");
}

TEST(ChromiumProcess, AKilledBrowserFailsTheWaitingCallAtOnce) {
    const auto process = LaunchAnswering();
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
    auto process = LaunchAnswering();
    const BrowserProcesses processes(process->ProfileDirectory());
    kill(processes.Browser(), SIGSTOP);
    const auto before = std::chrono::steady_clock::now();
    process.reset();
    EXPECT_LT(std::chrono::steady_clock::now() - before, 500ms) << "nobody waits for it";
    EXPECT_TRUE(processes.AreGoneWithin(5));
}

// Not a test: what the test below starts as a program of its own.
TEST(Client, DISABLED_ExitsWithoutQuitting) {
    static Launched process; // ends behind the platform's own objects
    process = LaunchAnswering();
    std::exit(0);
}

TEST(ChromiumProcess, AClientMayExitWithoutQuitting) {
    const NotingStandIn browser("exec '" + platform::FindChromium().value() + "' \"$@\"\n");
    const TemporaryHome home; // where it leaves its directories
    const ScopedVariable temporary("TMPDIR", home.Path().c_str());
    EXPECT_TRUE(platform::RunProgram({"/proc/self/exe", "--gtest_also_run_disabled_tests",
                                      "--gtest_filter=Client.DISABLED_ExitsWithoutQuitting"}));
    EXPECT_TRUE(browser.IsGoneWithin(5s));
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
