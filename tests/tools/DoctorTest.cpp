#include "tools/ToolTest.h"

namespace {

class Doctor : public testing::Test {
protected:
    // A program that the test makes and calls a browser.
    std::string MakeBrowser(const char* script) const {
        home.WriteFile("browser", std::string("#!/bin/sh\n") + script);
        const std::string file = home.Path("browser");
        chmod(file.c_str(), 0700);
        return file;
    }

    const TemporaryHome home;
    const ScopedVariable display{"DISPLAY", nullptr};
};

TEST_F(Doctor, ReportsAWorkingInstallation) {
    const std::string file = MakeBrowser("echo \"Chromium 9 $1\"; echo more");
    const ScopedVariable browser("ZRHTTP_BROWSER", file.c_str());
    const ScopedVariable builtin("ZRHTTP_APPLICATION", "builtin");
    const ScopedVariable legacy("ZRHTTP_LEGACY_SYSTEM", "1");
    home.WriteFile("settings/platform.ini", "[Platform]\nZRHTTP_HEADLESS=1\n");
    const auto run = RunTool({"doctor"});
    EXPECT_EQ(run.exitStatus, 0) << run.output;
    EXPECT_THAT(run.output,
                AllOf(HasSubstr("ZRHTTP_LEGACY_SYSTEM  1  (environment)"),
                      HasSubstr("ZRHTTP_HEADLESS       1  (platform.ini)"),
                      HasSubstr("ZRHTTP_CONTROL        builtin  (default)"),
                      HasSubstr(home.Path("settings") + "  (writable)"),
                      HasSubstr(home.Path("log") + "  (made when needed)"),
                      HasSubstr("text/plain, text/html"), HasSubstr("libcurl"),
                      HasSubstr(file + "  (Chromium 9 --version)"), HasSubstr("sandbox  ")));
}

TEST_F(Doctor, NamesEachProblemAndWhatToDo) {
    home.WriteFile("blocked", "a file where a directory is needed");
    const ScopedVariable root("ZRHTTP_HOME", home.Path("blocked").c_str());
    const ScopedVariable certificates("ZRHTTP_CA_FILE", home.Path("blocked").c_str());
    const ScopedVariable engine("ZRHTTP_CONTROL", "netscape\033[2J");
    const ScopedVariable headless("ZRHTTP_HEADLESS", nullptr);
    const ScopedVariable noSuchPort("DISPLAY", "127.0.0.1:9999999");
    const auto run = RunTool({"doctor"});
    EXPECT_EQ(run.exitStatus, 1);
    EXPECT_THAT(run.output,
                AllOf(HasSubstr("Problems"), HasSubstr("The settings directory cannot be used"),
                      HasSubstr("set ZRHTTP_HOME to a directory of yours"),
                      HasSubstr("The registry cannot be opened"),
                      HasSubstr("blocked: it holds no certificate in PEM"),
                      HasSubstr("ZRHTTP_CONTROL is 'netscape^[[2J'"),
                      HasSubstr("The display does not answer")));
}

TEST_F(Doctor, TriesWhetherChromiumSendsPostDataOnce) {
    const auto run = RunTool({"doctor"});
    EXPECT_EQ(run.exitStatus, 0) << run.output;
    EXPECT_THAT(run.output, HasSubstr("post data             exactly once"));
    const ScopedVariable browser("ZRHTTP_BROWSER", MakeBrowser("echo Chromium 9").c_str());
    EXPECT_THAT(RunTool({"doctor"}).output,
                AllOf(HasSubstr("not known"), HasSubstr("does not start: Chromium ended at once")));
}

TEST_F(Doctor, ChromiumIsAProblemOnlyWhereAnEngineNeedsIt) {
    const std::string broken = MakeBrowser("echo Chromium 9; exit 1");
    {
        const ScopedVariable browser("ZRHTTP_BROWSER", broken.c_str());
        const auto run = RunTool({"doctor"});
        EXPECT_EQ(run.exitStatus, 1);
        EXPECT_THAT(run.output, AllOf(HasSubstr(broken + "  (cannot run)"),
                                      HasSubstr("Chromium does not tell its version"),
                                      HasSubstr("the package chromium")));
        const ScopedVariable builtin("ZRHTTP_APPLICATION", "builtin");
        EXPECT_EQ(RunTool({"doctor"}).exitStatus, 0);
    }
    const ScopedVariable path("PATH", home.Path("empty").c_str());
    const auto missing = RunTool({"doctor"});
    EXPECT_EQ(missing.exitStatus, 1);
    EXPECT_THAT(missing.output, AllOf(HasSubstr("Chromium was not found."),
                                      HasSubstr("Install the package chromium")));
}

} // namespace
