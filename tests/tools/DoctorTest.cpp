#include <gmock/gmock.h>

#include "support/RunTool.h"
#include "support/ScopedVariable.h"
#include "support/TemporaryHome.h"

namespace {

using test_support::RunTool;
using test_support::ScopedVariable;
using testing::AllOf;
using testing::HasSubstr;

TEST(Doctor, ReportsAWorkingInstallation) {
    const test_support::TemporaryHome home;
    const ScopedVariable legacy("ZRHTTP_LEGACY_SYSTEM", "1");
    home.WriteFile("settings/platform.ini", "[Platform]\nZRHTTP_HEADLESS=1\n");
    const auto run = RunTool({"doctor"});
    EXPECT_EQ(run.exitStatus, 0) << run.output;
    EXPECT_THAT(run.output, AllOf(HasSubstr("ZRHTTP_LEGACY_SYSTEM  1  (environment)"),
                                  HasSubstr("ZRHTTP_HEADLESS       1  (platform.ini)"),
                                  HasSubstr("ZRHTTP_CONTROL        builtin  (default)"),
                                  HasSubstr(home.Path("settings") + "  (writable)"),
                                  HasSubstr(home.Path("log") + "  (made when needed)"),
                                  HasSubstr("text/plain, text/html"), HasSubstr("libcurl")));
}

TEST(Doctor, NamesEachProblemAndWhatToDo) {
    const test_support::TemporaryHome home;
    home.WriteFile("blocked", "a file where a directory is needed");
    const ScopedVariable root("ZRHTTP_HOME", home.Path("blocked").c_str());
    const ScopedVariable certificates("ZRHTTP_CA_FILE", home.Path("none.pem").c_str());
    const ScopedVariable engine("ZRHTTP_CONTROL", "netscape\033[2J");
    const auto run = RunTool({"doctor"});
    EXPECT_EQ(run.exitStatus, 1);
    EXPECT_THAT(run.output,
                AllOf(HasSubstr("Problems"), HasSubstr("The settings directory cannot be used"),
                      HasSubstr("set ZRHTTP_HOME to a directory of yours"),
                      HasSubstr("The registry cannot be opened"),
                      HasSubstr("Correct or unset ZRHTTP_CA_FILE"),
                      HasSubstr("ZRHTTP_CONTROL is 'netscape^[[2J'")));
}

} // namespace
