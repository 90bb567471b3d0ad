// The user's directories and settings, drive paths and the libraries found by them.
#include <platform/UserPaths.h>

#include <filesystem>

#include <gtest/gtest.h>
#include <platform/LastError.h>
#include <platform/Library.h>
#include <platform/Settings.h>

#include "support/ScopedVariable.h"
#include "support/TemporaryHome.h"

namespace {

using namespace platform;
using test_support::ScopedVariable;
using test_support::TemporaryHome;

std::string Local(const char* path) {
    CString local = "untouched";
    if (LocalFileName(path, local)) return std::string(local.View());
    EXPECT_EQ(local, "untouched");
    return "refused " + std::to_string(GetLastError());
}

TEST(LocalFileName, DrivePathsStayBelowTheDrive) {
    const TemporaryHome home;
    const std::pair<const char*, const char*> kCases[] = {
        {"c:\\a\\b.txt", "/a/b.txt"},
        {"C:/a//b\\.\\c\\", "/a/b/c"},
        {"c:relative", "/relative"},
        {"c:\\a\\..\\..b\\b..\\...", "/..b/b../..."},
        {"c:", ""}};
    for (const auto& [path, local] : kCases)
        EXPECT_EQ(Local(path), home.Path("drive_c") + local);
    for (const char* path :
         {"c:\\..", "c:..\\x", "c:/a/../../x", "c:\\a\\..\\..\\drive_c\\x", "d:\\x"})
        EXPECT_EQ(Local(path), "refused 5") << path;
    EXPECT_EQ(Local(nullptr), "refused 87");
    for (const char* path : {"", "../a", "/etc/x", "1:\\a", "cc:\\a"})
        EXPECT_EQ(Local(path), path);
}

TEST(Directories, FollowTheChosenRootAtEveryCallOrTheBaseDirectories) {
    const ScopedVariable root("ZRHTTP_HOME", "/one/../two/");
    EXPECT_EQ(SettingsDirectory(), "/two/settings");
    const ScopedVariable relative("ZRHTTP_HOME", "below");
    EXPECT_EQ(DataDirectory().View(), (std::filesystem::current_path() / "below/data").string());

    const ScopedVariable noRoot("ZRHTTP_HOME", nullptr);
    const ScopedVariable home("HOME", "/home/me");
    const ScopedVariable config("XDG_CONFIG_HOME", nullptr);
    const ScopedVariable state("XDG_STATE_HOME", "relative/is/ignored");
    const ScopedVariable data("XDG_DATA_HOME", "/xdg");
    EXPECT_EQ(SettingsDirectory(), "/home/me/.config/zrhttpbase3/settings");
    EXPECT_EQ(LogDirectory(), "/home/me/.local/state/zrhttpbase3/log");
    EXPECT_EQ(DataDirectory(), "/xdg/zrhttpbase3/data");
    EXPECT_EQ(RegistryFileName(), "/xdg/zrhttpbase3/registry.sqlite");
}

TEST(MakeDirectory, MakesPrivateDirectoriesOrTellsWhyNot) {
    const TemporaryHome home;
    home.WriteFile("file", "x");
    EXPECT_TRUE(MakeDirectory("c:\\a\\b"));
    EXPECT_TRUE(MakeDirectory("c:\\a\\b")) << "it may exist";
    EXPECT_EQ(std::filesystem::status(home.Path("drive_c/a")).permissions(),
              std::filesystem::perms::owner_all);
    EXPECT_FALSE(MakeDirectory(home.Path("file").c_str()));
    EXPECT_EQ(GetLastError(), ERROR_ALREADY_EXISTS);
}

TEST(Settings, EnvironmentComesBeforeFileBeforeDefault) {
    constexpr const char* kName = "ZRHTTP_APPLICATION";
    const auto shown = [](const char* name) {
        const Setting setting = GetSetting(name);
        return std::string(setting.value) + " from " + setting.source.GetString();
    };
    const TemporaryHome home;
    const ScopedVariable restored(kName, nullptr);
    EXPECT_EQ(shown(kName), "chromium from default");
    const std::string path(5000, 'p');
    home.WriteFile("settings/platform.ini", "[Platform]\nzrhttp_application = " + path + "\n");
    const ScopedVariable empty(kName, "");
    EXPECT_EQ(shown(kName), path + " from platform.ini");
    const ScopedVariable set(kName, "other");
    EXPECT_EQ(shown(kName), "other from environment");

    // The file lies below the root, so that it cannot move it.
    const ScopedVariable noRoot("ZRHTTP_HOME", nullptr);
    const ScopedVariable base("XDG_CONFIG_HOME", home.Path("config").c_str());
    home.WriteFile("config/zrhttpbase3/settings/platform.ini", "[Platform]\nZRHTTP_HOME=/away\n");
    EXPECT_EQ(GetSetting("ZRHTTP_HOME").source, "default");
}

TEST(Library, IsFoundByDrivePathAndInTheCurrentDirectoryWithItsOwnExportsOnly) {
    const TemporaryHome home;
    std::filesystem::create_directory(home.Path("drive_c"));
    std::filesystem::copy_file(WRAPPER_FILE, home.Path("drive_c/copy.dll"));
    const HMODULE byDrivePath = LoadLibraryA("c:\\copy.dll");
    EXPECT_TRUE(GetProcAddress(byDrivePath, "MAPI_IEIsProtectedModeURL"));
    for (const char* name : {"malloc", "NoSuchExport"}) {
        EXPECT_FALSE(GetProcAddress(byDrivePath, name)) << name;
        EXPECT_EQ(GetLastError(), ERROR_PROC_NOT_FOUND);
    }
    EXPECT_TRUE(FreeLibrary(byDrivePath));
    EXPECT_FALSE(FreeLibrary(nullptr));

    const auto before = std::filesystem::current_path();
    std::filesystem::current_path(home.Path("drive_c"));
    const HMODULE byName = LoadLibraryA("copy.dll");
    std::filesystem::current_path(before);
    EXPECT_TRUE(FreeLibrary(byName));

    home.WriteFile("drive_c/text.dll", "no library");
    // The system's own directories are not searched: libc.so.6 is no file of the current one.
    for (const char* name : {"c:\\text.dll", "c:\\missing.dll", "c:\\..\\x.dll", "libc.so.6"}) {
        SetLastError(ERROR_SUCCESS);
        EXPECT_FALSE(LoadLibraryA(name)) << name;
        EXPECT_EQ(GetLastError(), ERROR_MOD_NOT_FOUND) << name;
    }
}

} // namespace
