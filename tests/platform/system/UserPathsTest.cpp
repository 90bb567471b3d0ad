#include <platform/UserPaths.h>

#include <filesystem>

#include <gtest/gtest.h>
#include <platform/LastError.h>
#include <sys/stat.h>

#include "support/ScopedVariable.h"
#include "support/TemporaryHome.h"

namespace {

using namespace platform;
using test_support::ScopedVariable;
using test_support::TemporaryHome;

std::string Local(const char* path) {
    CString local = "untouched";
    SetLastError(ERROR_SUCCESS);
    if (LocalFileName(path, local)) return std::string(local.View());
    EXPECT_EQ(local, "untouched");
    return "refused " + std::to_string(GetLastError());
}

TEST(LocalFileName, DrivePathsMapBelowTheDrive) {
    const TemporaryHome home;
    const std::string drive = home.Path("drive_c");
    EXPECT_EQ(Local("c:\\a\\b.txt"), drive + "/a/b.txt");
    EXPECT_EQ(Local("C:/a//b\\.\\c\\"), drive + "/a/b/c");
    EXPECT_EQ(Local("c:relative"), drive + "/relative");
    EXPECT_EQ(Local("c:\\a\\..\\..b\\b..\\..."), drive + "/..b/b../...");
    EXPECT_EQ(Local("c:"), drive);
}

TEST(LocalFileName, NothingLeavesTheRoot) {
    const TemporaryHome home;
    for (const char* path : {"c:\\..", "c:..\\x", "c:/a/../../x", "c:\\a\\..\\..\\drive_c\\x",
                             "c:\\.\\..", "d:\\x", "Z:"})
        EXPECT_EQ(Local(path), "refused 5") << path;
    EXPECT_EQ(Local(nullptr), "refused 87");
}

TEST(LocalFileName, OtherPathsStayAsTheyAre) {
    for (const char* path : {"", "a", "../a", "/etc/x", "1:\\a", "cc:\\a", "back\\slash"})
        EXPECT_EQ(Local(path), path);
}

TEST(Directories, FollowTheChosenRootAtEveryCall) {
    const ScopedVariable root("ZRHTTP_HOME", "/one/../two/");
    EXPECT_EQ(SettingsDirectory(), "/two/settings");
    EXPECT_EQ(DataDirectory(), "/two/data");
    EXPECT_EQ(LogDirectory(), "/two/log");
    EXPECT_EQ(RegistryFileName(), "/two/registry.sqlite");
    const ScopedVariable relative("ZRHTTP_HOME", "below");
    EXPECT_EQ(DataDirectory().View(), (std::filesystem::current_path() / "below/data").string());
}

TEST(Directories, WithoutARootAreTheBaseDirectories) {
    const ScopedVariable root("ZRHTTP_HOME", nullptr);
    const ScopedVariable home("HOME", "/home/me");
    const ScopedVariable config("XDG_CONFIG_HOME", nullptr);
    const ScopedVariable state("XDG_STATE_HOME", "relative/is/ignored");
    const ScopedVariable data("XDG_DATA_HOME", "/xdg");
    EXPECT_EQ(SettingsDirectory(), "/home/me/.config/zrhttpbase3/settings");
    EXPECT_EQ(LogDirectory(), "/home/me/.local/state/zrhttpbase3/log");
    EXPECT_EQ(DataDirectory(), "/xdg/zrhttpbase3/data");
    EXPECT_EQ(RegistryFileName(), "/xdg/zrhttpbase3/registry.sqlite");
    EXPECT_EQ(Local("c:\\x"), "/xdg/zrhttpbase3/drive_c/x");
}

TEST(MakeDirectory, MakesPrivateDirectoriesOrTellsWhyNot) {
    const TemporaryHome home;
    home.WriteFile("file", "x");
    EXPECT_TRUE(MakeDirectory("c:\\a\\b"));
    EXPECT_TRUE(MakeDirectory("c:\\a\\b")) << "it may exist";
    struct stat status = {};
    ASSERT_EQ(::stat(home.Path("drive_c/a").c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777, 0700U);
    EXPECT_FALSE(MakeDirectory(home.Path("file").c_str()));
    EXPECT_EQ(GetLastError(), ERROR_ALREADY_EXISTS);
    EXPECT_FALSE(MakeDirectory("/proc/self/no/such"));
    EXPECT_NE(GetLastError(), ERROR_ALREADY_EXISTS);

    EXPECT_TRUE(IsReadableDirectory("c:\\a"));
    EXPECT_FALSE(IsReadableDirectory("c:\\missing"));
    EXPECT_EQ(GetLastError(), ERROR_FILE_NOT_FOUND);
    EXPECT_FALSE(IsReadableDirectory(home.Path("file").c_str()));
}

} // namespace
