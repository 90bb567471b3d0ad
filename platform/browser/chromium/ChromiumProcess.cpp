#include "browser/chromium/ChromiumProcess.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <filesystem>

#include <fcntl.h>
#include <platform/Diagnostics.h>
#include <platform/Settings.h>
#include <unistd.h>

#include "browser/chromium/ProfileDirectory.h"
#include "browser/chromium/SpawnProgram.h"
#include "browser/chromium/Supervision.h"
#include "browser/chromium/SupervisorScript.h"
#include "internet/FurtherCertificates.h"

namespace platform {
namespace {

constexpr const char* kNotFound =
    "Chromium was not found; install the package chromium or set ZRHTTP_BROWSER";

// What a pipe's ends are called here: the one to read from, the one to write to.
struct PipeEnds {
    OwnedDescriptor read{-1};
    OwnedDescriptor write{-1};
};

std::optional<PipeEnds> MakePipe() {
    int ends[2];
    if (pipe2(ends, O_CLOEXEC) != 0) return std::nullopt;
    return PipeEnds{OwnedDescriptor(ends[0]), OwnedDescriptor(ends[1])};
}

// What connects us with a browser and its supervisor.
struct Pipes {
    std::optional<PipeEnds> commands = MakePipe();
    std::optional<PipeEnds> answers = MakePipe();
    std::optional<PipeEnds> errors = MakePipe();
    // Nothing is written to these: what matters is who holds their ends, and until when.
    std::optional<PipeEnds> hold = MakePipe();
    std::optional<PipeEnds> life = MakePipe();
    std::optional<PipeEnds> report = MakePipe(); // from the supervisor, at the start

    bool AreOpen() const { return commands && answers && errors && hold && life && report; }
    void Close() {
        for (auto* pipe : {&commands, &answers, &errors, &hold, &life, &report})
            pipe->reset();
    }
};

bool IsExecutable(const std::string& path) {
    std::error_code error;
    return std::filesystem::is_regular_file(path, error) && access(path.c_str(), X_OK) == 0;
}

std::optional<std::string> FindOnPath(const char* pszName) {
    const char* path = std::getenv("PATH");
    std::string_view rest = path ? path : "/usr/local/bin:/usr/bin:/bin";
    while (!rest.empty()) {
        const std::size_t end = std::min(rest.find(':'), rest.size());
        const std::string file = std::string(rest.substr(0, end)) + "/" + pszName;
        if (file.front() == '/' && IsExecutable(file)) return file;
        rest.remove_prefix(std::min(end + 1, rest.size()));
    }
    return std::nullopt;
}

std::vector<std::string> CommandLine(const std::string& browser, const std::string& profile,
                                     bool isHeadless) {
    std::vector<std::string> command{browser, "--remote-debugging-pipe",
                                     "--user-data-dir=" + profile};
    // No pages of its own, no traffic of its own, nothing slowed down behind the user's back.
    for (const char* option :
         {"--no-startup-window", "--no-first-run", "--disable-gpu", "--disable-quic",
          "--disable-background-networking", "--disable-component-update", "--disable-sync",
          "--disable-extensions", "--disable-breakpad", "--disable-popup-blocking",
          "--disable-background-timer-throttling", "--disable-renderer-backgrounding",
          "--disable-backgrounding-occluded-windows", "--password-store=basic",
          "--disable-features=BackForwardCache,RenderDocument,ProactivelySwapBrowsingInstance,"
          "WebUIOmniboxPopup,WebUIOmniboxAimPopup,WebUIOmniboxFullPopup,"
          "SpareRendererForSitePerProcess"})
        command.emplace_back(option);
    if (isHeadless) command.emplace_back("--headless");
    if (geteuid() == 0) command.emplace_back("--no-sandbox"); // it would not start otherwise
    return command;
}

bool IsSetAnew(std::string_view variable) {
    constexpr std::array<std::string_view, 7> names{
        "HOME=",       "TMPDIR=",         "DISPLAY=", "WAYLAND_DISPLAY=",
        "XAUTHORITY=", "CHROMIUM_FLAGS=", "XDG_"};
    return std::any_of(names.begin(), names.end(),
                       [&](std::string_view name) { return variable.starts_with(name); });
}

// What lets it onto the display lies in our home unless the variable says otherwise.
std::optional<std::string> DisplayCredentials() {
    if (const char* file = std::getenv("XAUTHORITY")) return file;
    const char* const home = std::getenv("HOME");
    return home ? std::optional(std::string(home) + "/.Xauthority") : std::nullopt;
}

// Ours, but whatever the browser writes lands in its profile directory, and its windows are on the
// X display.
std::vector<std::string> Environment(const std::string& profile,
                                     const std::optional<std::string>& display) {
    std::vector<std::string> variables{"HOME=" + profile, "TMPDIR=" + profile};
    if (display) {
        variables.push_back("DISPLAY=" + *display);
        if (const auto file = DisplayCredentials()) variables.push_back("XAUTHORITY=" + *file);
    }
    for (char** variable = environ; *variable; ++variable)
        if (!IsSetAnew(*variable)) variables.emplace_back(*variable);
    return variables;
}

void WarnAboutSandbox() {
    static const bool isWarned = [] {
        ReportDiagnostic(
            Severity::trace,
            "warning: Chromium runs without its sandbox, because this process is root's");
        return true;
    }();
    static_cast<void>(isWarned);
}

CertificateProblem TrustFurtherCertificates(const std::string& profile) {
    const FurtherCertificates further = ReadFurtherCertificates();
    std::string error;
    if (further.certificates.empty() || FillCertificateStore(profile, further.certificates, error))
        return {further.problem, !further.problem.empty()};
    ReportDiagnostic(Severity::failure, CString(error));
    return {error, false};
}

class RunningChromium final : public ChromiumProcess {
public:
    RunningChromium(std::shared_ptr<Supervision> supervision, CertificateProblem certificateProblem)
        : m_supervision(std::move(supervision)),
          m_certificateProblem(std::move(certificateProblem)) {}
    ~RunningChromium() override { Quit(); }

    void Converse(Pipes& pipes) {
        m_connection = DevToolsConnection::Start(
            std::move(pipes.commands->write), std::move(pipes.answers->read),
            std::move(pipes.errors->read),
            [supervision = m_supervision] { supervision->SeeToTheEnd(); });
    }

    DevToolsConnection& Connection() override { return *m_connection; }
    std::string WindowInstance() const override { return "(" + ProfileDirectory() + ")"; }
    const std::string& ProfileDirectory() const override {
        return m_supervision->ProfileDirectory();
    }
    const CertificateProblem& Certificates() const override { return m_certificateProblem; }
    void Quit() override {
        m_connection->Send({}, "Browser.close", nlohmann::json::object());
        m_connection->Close();
        m_supervision->EndIfAlone();
    }

private:
    const std::shared_ptr<Supervision> m_supervision;
    const CertificateProblem m_certificateProblem;
    std::shared_ptr<DevToolsConnection> m_connection;
};

// The system sends the signal to the process group, running or stopped, when the last one who
// could write to the pipe has gone, however that comes.
void SignalAtEnd(const PipeEnds& pipe, pid_t group, int signal) {
    fcntl(pipe.read.Get(), F_SETOWN, -group);
    fcntl(pipe.read.Get(), F_SETSIG, signal);
    fcntl(pipe.read.Get(), F_SETFL, O_ASYNC);
}

// Waits for the line. Empty when there is no browser.
std::optional<pid_t> ReadGroup(PipeEnds& report) {
    report.write.Close();
    std::string line;
    for (char letter = 0; letter != '\n';) {
        const ssize_t count = read(report.read.Get(), &letter, 1);
        if (count < 0 && errno == EINTR) continue; // the end of the shell, for one
        if (count != 1) break;
        line += letter;
    }
    const pid_t group = std::atoi(line.c_str());
    return group > 1 ? std::optional(group) : std::nullopt;
}

// The supervisor goes into the background at once, so there is no child to look after.
bool StartSupervised(const std::string& browser, const std::string& profile,
                     const std::optional<std::string>& display, Pipes& pipes) {
    ProgramStart start;
    start.command = {"/bin/sh", "-c", kSupervisorScript, "zrhttp-browser", profile};
    for (std::string& part : CommandLine(browser, profile, !display))
        start.command.push_back(std::move(part));
    start.descriptors = {{pipes.report->write.Get(), 1},  {pipes.errors->write.Get(), 2},
                         {pipes.commands->read.Get(), 3}, {pipes.answers->write.Get(), 4},
                         {pipes.hold->read.Get(), 5},     {pipes.life->write.Get(), 6},
                         {pipes.life->read.Get(), 7}};
    start.environment = Environment(profile, display);
    const auto shell = StartProgram(start);
    if (!shell) return false;
    SignalAtEnd(*pipes.life, *shell, SIGCONT);
    if (const auto group = ReadGroup(*pipes.report)) SignalAtEnd(*pipes.hold, *group, SIGKILL);
    return WaitForProgram(*shell);
}

} // namespace

std::optional<std::string> FindChromium() {
    const CString setting = GetSetting("ZRHTTP_BROWSER").value;
    if (!setting.IsEmpty()) return std::string(setting.View());
    for (const char* name : {"chromium", "chromium-browser", "google-chrome"})
        if (auto found = FindOnPath(name)) return found;
    return std::nullopt;
}

std::shared_ptr<ChromiumProcess> ChromiumProcess::Launch(const std::optional<std::string>& display,
                                                         std::string& error) {
    const auto browser = FindChromium();
    if (!browser || !IsExecutable(*browser)) {
        error = browser ? *browser + " is not an executable file" : kNotFound;
        return nullptr;
    }
    Pipes pipes;
    auto profile = pipes.AreOpen() ? MakeProfileDirectory() : std::nullopt;
    if (!profile) {
        error = std::string("no directory or no pipe for Chromium: ") + std::strerror(errno);
        return nullptr;
    }
    if (geteuid() == 0) WarnAboutSandbox();
    CertificateProblem certificateProblem = TrustFurtherCertificates(profile->path);
    const bool isStarted = StartSupervised(*browser, profile->path, display, pipes);
    const auto supervision = std::make_shared<Supervision>(
        *std::move(profile), std::move(pipes.life->write), std::move(pipes.hold->write));
    if (!isStarted) {
        error = std::string("Chromium cannot be started: ") + std::strerror(errno);
        pipes.Close(); // removing a directory takes descriptors
        supervision->EndIfAlone();
        return nullptr;
    }
    const auto process =
        std::make_shared<RunningChromium>(supervision, std::move(certificateProblem));
    process->Converse(pipes);
    pipes.Close();
    RemoveAbandonedProfiles(); // while the browser starts
    return process;
}

} // namespace platform
