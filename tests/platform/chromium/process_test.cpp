// Starting and ending the browser process, whoever goes first.

#include <algorithm>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <limits>
#include <thread>

#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/stat.h>
#include <unistd.h>

#include "browser/chromium/ChromiumProcess.h"
#include "browser/chromium/ProfileDirectory.h"
#include "browser/chromium/SpawnProgram.h"
#include "platform/chromium/BrowserProcesses.h"
#include "platform/chromium/StandIn.h"
#include "support/Processes.h"

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

// Once those of earlier browsers are closed.
std::size_t SettledDescriptors() {
    const std::size_t open = OpenDescriptors();
    PumpFor(200ms);
    return OpenDescriptors() == open ? open : SettledDescriptors();
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
    const std::size_t descriptors = SettledDescriptors();
    auto process = LaunchAnswering();
    const BrowserProcesses processes(process->ProfileDirectory());
    EXPECT_GT(processes.All().size(), 3u);
    EXPECT_FALSE(processes.HasListeningSocket());
    struct stat profile {};
    ASSERT_EQ(stat(process->ProfileDirectory().c_str(), &profile), 0);
    EXPECT_EQ(profile.st_mode & 07777u, 0700u);
    EXPECT_EQ(OpenDescriptors(), descriptors + 7) << "five pipes, the wake-up, the lock";
    process->Quit();
    EXPECT_TRUE(processes.AreGoneWithin(5));
    process.reset();
    PumpUntil([&] { return OpenDescriptors() == descriptors; }, "closed descriptors");
}

// In a program that handles the ends of its children, which interrupt its calls.
TEST(ChromiumProcess, ManyStartsLeaveNothing) {
    struct sigaction noting {};
    struct sigaction before {};
    noting.sa_handler = [](int) {};
    sigaction(SIGCHLD, &noting, &before);
    const std::size_t descriptors = SettledDescriptors();
    std::vector<BrowserProcesses> all;
    for (int i = 0; i < 4; ++i) // every other one ends while it starts
        all.emplace_back((i % 2 ? Launch() : LaunchAnswering())->ProfileDirectory());
    for (const BrowserProcesses& processes : all)
        EXPECT_TRUE(processes.AreGoneWithin(5));
    PumpUntil([&] { return OpenDescriptors() == descriptors; }, "closed descriptors");
    sigaction(SIGCHLD, &before, nullptr);
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

// Not a test: what the tests below start as a program of its own. It ends with its input.
TEST(Client, DISABLED_ExitsWithoutQuitting) {
    static Launched process; // ends behind the platform's own objects
    process = LaunchAnswering();
    std::cout << "profile " << process->ProfileDirectory() << std::endl;
    std::cin.ignore(std::numeric_limits<std::streamsize>::max());
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

namespace {

constexpr int kQuit = -1;

// A program with a browser's stand-in.
class Program {
public:
    Program() {
        int input[2];
        int output[2];
        if (pipe2(input, O_CLOEXEC) || pipe2(output, O_CLOEXEC)) throw std::runtime_error("pipe");
        const OwnedDescriptor theirs[] = {OwnedDescriptor(input[0]), OwnedDescriptor(output[1])};
        m_input = std::make_unique<OwnedDescriptor>(input[1]);
        m_process = platform::StartProgram({{"/proc/self/exe", "--gtest_also_run_disabled_tests",
                                             "--gtest_filter=Client.DISABLED_ExitsWithoutQuitting"},
                                            {{theirs[0].Get(), 0}, {theirs[1].Get(), 1}},
                                            {}});
        std::string text;
        char letter = 0;
        while (read(output[0], &letter, 1) == 1 &&
               !(letter == '\n' && text.find("profile /") < text.size()))
            text += letter;
        close(output[0]);
        profile = text.substr(text.rfind(' ') + 1);
    }
    ~Program() {
        m_input.reset();
        if (!m_process) return;
        kill(*m_process, SIGCONT);
        platform::WaitForProgram(*m_process);
    }
    void Signal(int toBrowser, int toSupervisor, int toProgram) {
        for (const Process& process : AllProcesses())
            if (process.HasInCommandLine(profile) && process.IsRunning())
                kill(process.id,
                     process.HasInCommandLine("zrhttp-browser") ? toSupervisor : toBrowser);
        PumpFor(toProgram == kQuit ? 300ms : 0ms); // until the supervisor has gone
        if (toProgram == kQuit)
            m_input.reset();
        else
            kill(*m_process, toProgram);
    }
    bool IsRunning() const {
        const auto all = AllProcesses();
        return std::count_if(all.begin(), all.end(), [&](const Process& process) {
                   return process.IsRunning() && process.HasInCommandLine(profile);
               }) > 0;
    }

    std::string profile;

private:
    std::unique_ptr<OwnedDescriptor> m_input;
    std::optional<pid_t> m_process;
};

} // namespace

TEST(ChromiumProcess, LeavesNothingWhoeverIsKilledOrStopped) {
    const StandIn browser("#!/bin/sh\nprintf '{\"id\":1,\"result\":{\"product\":\"Chrome/0\"}}\\0' "
                          ">&4\nread -r _ <&3\n");
    const struct {
        int browser, supervisor, program;
        bool isForNextStart = false;
    } ends[] = {{0, SIGTERM, 0},
                {0, SIGHUP, SIGSTOP},
                {SIGSTOP, SIGTERM, SIGTERM},
                {SIGKILL, SIGKILL, 0},
                {SIGKILL, SIGSTOP, 0},
                {SIGSTOP, SIGKILL, kQuit},
                {0, SIGSTOP, SIGKILL},
                {SIGSTOP, SIGSTOP, SIGKILL},
                {SIGSTOP, SIGKILL, SIGTERM, true},
                {SIGKILL, SIGKILL, SIGKILL, true}};
    const Program bystander;
    std::vector<Program> programs(std::size(ends));
    for (std::size_t i = 0; i < std::size(ends); ++i)
        programs[i].Signal(ends[i].browser, ends[i].supervisor, ends[i].program);
    const auto expectGone = [&](bool isForNextStart) {
        for (std::size_t i = 0; i < std::size(ends); ++i)
            if (ends[i].isForNextStart <= isForNextStart)
                PumpUntil([&] { return !std::filesystem::exists(programs[i].profile); },
                          programs[i].profile.c_str());
        for (const Program& program : programs)
            PumpUntil([&] { return !program.IsRunning(); }, "the end of its processes");
    };
    const auto signalled = std::chrono::steady_clock::now();
    expectGone(false);
    EXPECT_LT(std::chrono::steady_clock::now() - signalled, 5s);
    Launch();
    expectGone(true);
    EXPECT_TRUE(std::filesystem::exists(bystander.profile) && bystander.IsRunning());
}

TEST(ProfileDirectory, IsRemovedByOthersWhenNobodyHoldsItAndNotBefore) {
    const TemporaryHome home;
    home.WriteFile("target/file", "");
    home.WriteFile("target/kept", "");
    const ScopedVariable temporary("TMPDIR", home.Path().c_str());
    const auto exists = [](const std::string& path) { return std::filesystem::exists(path); };
    std::filesystem::create_directory_symlink(home.Path("target"),
                                              home.Path("zrhttp-profile-link"));
    const auto abandon = [](const char* pszSupervisor) {
        const std::string path = platform::MakeProfileDirectory()->path;
        platform::StartProgram({{"/bin/sh", "-c", pszSupervisor, "name", path}, {}, {}});
        return path;
    };
    const std::string ending = abandon("while [ -e $TMPDIR/target/file ]; do sleep 0.1; done");
    const std::string stopped = abandon("kill -STOP $$; exit 0");
    PumpFor(100ms);
    {
        std::atomic<bool> isDone{false};
        std::vector<std::jthread> sweepers;
        for (int i = 0; i < 2; ++i)
            sweepers.emplace_back([&] {
                while (!isDone)
                    platform::RemoveAbandonedProfiles();
            });
        for (int i = 0; i < 300; ++i) {
            const auto profile = platform::MakeProfileDirectory();
            std::this_thread::sleep_for(1ms);
            EXPECT_EQ(rmdir(profile->path.c_str()), 0) << i;
        }
        PumpUntil([&] { return !exists(stopped); }, "the sweep");
        EXPECT_TRUE(exists(ending)) << "its supervisor runs";
        std::filesystem::remove(home.Path("target/file"));
        PumpUntil([&] { return !exists(ending); }, "the sweep behind the supervisor");
        isDone = true;
    }
    EXPECT_TRUE(exists(home.Path("zrhttp-profile-link/kept"))) << "a link is none";
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
    EXPECT_THAT(bare, HasSubstr("\n0  1  2  3  4  5  6  7\n")) << "7 is the listing itself";
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
