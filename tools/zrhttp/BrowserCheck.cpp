#include "zrhttp/BrowserCheck.h"

#include <cstdlib>
#include <filesystem>

#include <sched.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <platform/BrowserSurroundings.h>
#include <platform/Settings.h>

#include "zrhttp/ProgramOutput.h"

namespace zrhttp {
namespace {

namespace fs = std::filesystem;

constexpr std::chrono::seconds kVersionPatience{10};

bool IsChromiumSet() {
    return platform::GetSetting("ZRHTTP_CONTROL").value == "chromium" ||
           platform::GetSetting("ZRHTTP_APPLICATION").value == "chromium";
}

// The helper by which Chromium starts its sandbox where the system does not let it by itself.
bool HasSandboxHelper(const std::string& chromium) {
    std::error_code ignored;
    for (const fs::path& folder :
         {fs::canonical(chromium, ignored).parent_path(), fs::path("/usr/lib/chromium")}) {
        struct stat helper {};
        if (stat((folder / "chrome-sandbox").c_str(), &helper) == 0 && helper.st_uid == 0 &&
            (helper.st_mode & S_ISUID) != 0)
            return true;
    }
    return false;
}

// Tries it, in a process that does nothing else: what forbids it differs from system to system.
bool MayMakeUserNamespaces() {
    const pid_t child = fork();
    if (child == 0) _exit(unshare(CLONE_NEWUSER) == 0 ? 0 : 1);
    int status = -1;
    return child > 0 && waitpid(child, &status, 0) == child && status == 0;
}

void CheckSandbox(Diagnosis& diagnosis, const std::string& chromium) {
    if (geteuid() == 0)
        return diagnosis.Fact("sandbox", "off", "because root; use an account of your own");
    if (MayMakeUserNamespaces()) return diagnosis.Fact("sandbox", "on", "user namespaces");
    if (HasSandboxHelper(chromium)) return diagnosis.Fact("sandbox", "on", "chrome-sandbox");
    diagnosis.Fact("sandbox", "cannot work");
    diagnosis.Problem("Chromium cannot start its sandbox, and does not start without.",
                      "Install the package chromium-sandbox.");
}

void CheckPosts(Diagnosis& diagnosis) {
    CString error;
    if (platform::ChromiumSendsPostsOnce(error)) return diagnosis.Fact("post data", "exactly once");
    if (!error.IsEmpty()) {
        diagnosis.Fact("post data", "not known");
        return diagnosis.Problem("Chromium does not start: " + std::string(error.View()),
                                 "See the log; zrhttp fetch with Chromium fails in the same way.");
    }
    if (platform::GetSetting("ZRHTTP_REPEATED_POST").value == "1")
        return diagnosis.Fact("post data", "maybe twice", "allowed by ZRHTTP_REPEATED_POST");
    diagnosis.Fact("post data", "refused", "this browser may send them twice");
    diagnosis.Problem(
        "This browser may send post data twice and is given none.",
        "Take the browser of the package chromium, or set ZRHTTP_REPEATED_POST to 1.");
}

void CheckChromium(Diagnosis& diagnosis) {
    const std::string file(platform::ChromiumFileName().View());
    const auto version = file.empty() ? std::nullopt : VersionOfProgram(file, kVersionPatience);
    diagnosis.Fact("chromium", file, version ? *version : file.empty() ? "missing" : "cannot run");
    if (version) {
        CheckSandbox(diagnosis, file);
        if (IsChromiumSet()) CheckPosts(diagnosis);
        return;
    }
    if (!IsChromiumSet()) return;
    if (file.empty())
        return diagnosis.Problem("Chromium was not found.",
                                 "Install the package chromium, or set ZRHTTP_BROWSER to its "
                                 "path.");
    diagnosis.Problem("Chromium does not tell its version: " + file,
                      "Correct or unset ZRHTTP_BROWSER; the package chromium has a browser.");
}

void CheckDisplay(Diagnosis& diagnosis) {
    const char* variable = std::getenv("DISPLAY");
    const std::string display = variable ? variable : "";
    if (platform::GetSetting("ZRHTTP_HEADLESS").value == "1")
        return diagnosis.Fact("display", display, "not used: ZRHTTP_HEADLESS is 1");
    if (display.empty()) return diagnosis.Fact("display", display, "none: windows are not shown");
    const bool isAnswering = !platform::BrowserDisplayName().IsEmpty();
    diagnosis.Fact("display", display, isAnswering ? "answers" : "does not answer");
    if (!isAnswering)
        diagnosis.Problem("The display does not answer: " + display,
                          "Start it or correct DISPLAY; without DISPLAY, browsers run without "
                          "windows.");
}

} // namespace

void CheckBrowser(Diagnosis& diagnosis) {
    diagnosis.Section("Browser");
    CheckChromium(diagnosis);
    CheckDisplay(diagnosis);
}

} // namespace zrhttp
