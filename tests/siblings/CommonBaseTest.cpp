#include <filesystem>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <platform/Clock.h>
#include <platform/LastError.h>
#include <platform/Window.h>

#include "siblings/ZrAbModules.h"
#include "siblings/ZrAbResourceHandling.h"
#include "siblings/ZrCbFileSystem.h"
#include "siblings/ZrCbRegistry.h"
#include "siblings/ZrCbSystem.h"
#include "support/DiagnosticRecorder.h"
#include "support/ManualClock.h"
#include "support/MemoryRegistry.h"
#include "support/TemporaryHome.h"

namespace {

using test_support::DiagnosticRecorder;
using test_support::ManualClock;
using test_support::MemoryRegistry;
using test_support::TemporaryHome;

TEST(ByteBuffer, HoldsAnyBytes) {
    CByteBuffer buffer(1024, 256);
    EXPECT_EQ(buffer.GetSize(), 0u);
    EXPECT_EQ(buffer.GetString(), "");
    buffer.Add("text");
    buffer.Add("\0\xFF", 2);
    buffer.Add(nullptr, 0);
    buffer += "end";
    EXPECT_EQ(buffer.GetString(), CString("text\0\xFF"
                                          "end",
                                          9));
    const CByteBuffer copy = buffer;
    buffer = "new";
    EXPECT_EQ(buffer.GetString(), "new");
    EXPECT_EQ(copy.GetSize(), 9u);
    buffer.RemoveAll();
    EXPECT_EQ(buffer.GetSize(), 0u);

    CByteBuffer odd(-1, 0);
    std::string expected;
    for (int i = 0; i < 5000; ++i) {
        odd.Add("ab");
        expected += "ab";
    }
    EXPECT_EQ(odd.GetString(), expected.c_str());
}

TEST(FileSystem, JoinsPathsWithOneSeparator) {
    const auto join = [](const char* directory, const char* name) {
        return CZrCbFileSystem::CombinePaths(directory, name);
    };
    EXPECT_EQ(join("/a", "b"), "/a/b");
    EXPECT_EQ(join("/a/", "/b"), "/a/b");
    EXPECT_EQ(join("", "/b"), "/b");
    EXPECT_EQ(join("/a", ""), "/a");
    EXPECT_EQ(join("/", "b"), "/b");
    EXPECT_EQ(join("c:\\x", "b"), "c:\\x\\b");
    EXPECT_EQ(join("c:\\x\\", "b"), "c:\\x\\b");
    EXPECT_EQ(CZrCbFileSystem::CombinePaths("a", "", "b", "", "", "", "", "", "", "c"), "a/b/c");
}

TEST(FileSystem, SplitsPathsIntoWhatJoinsToThemAgain) {
    const std::vector<std::vector<const char*>> cases = {
        {"c:\\a.b\\n.tar.gz", "c:", "\\a.b\\", "n.tar", ".gz"},
        {"/a.b/name", "", "/a.b/", "name", ""},
        {"C:name.", "C:", "", "name", "."},
        {".hidden", "", "", "", ".hidden"},
        {"a/b\\c.x", "", "a/b\\", "c", ".x"},
        {"", "", "", "", ""}};
    for (const auto& parts : cases) {
        CString drive, directory, name, extension;
        CZrCbFileSystem::SplitPath(parts[0], drive, directory, name, extension);
        EXPECT_EQ(drive, parts[1]) << parts[0];
        EXPECT_EQ(directory, parts[2]) << parts[0];
        EXPECT_EQ(name, parts[3]) << parts[0];
        EXPECT_EQ(extension, parts[4]) << parts[0];
    }
}

TEST(FileSystem, ReadsWholeFilesOrSaysWhyNot) {
    const TemporaryHome home;
    std::string bytes(200'000, 'x');
    bytes[70'000] = '\0';
    home.WriteFile("drive_c/in/f.bin", bytes);
    CString content = "untouched", reason;
    ASSERT_EQ(CZrCbFileSystem::GetFileAsText("c:\\in\\f.bin", content, reason), 1);
    EXPECT_EQ(content, CString(bytes));
    CByteBuffer buffer(1024, 256);
    buffer.Add("head");
    ASSERT_NE(CZrCbFileSystem::GetFileAsBinary("c:\\in\\f.bin", &buffer, reason), 0);
    EXPECT_EQ(buffer.GetString(), CString("head" + bytes));

    for (const char* path : {"c:\\in\\absent", "c:\\in", "c:\\..\\x"}) {
        content = "untouched";
        EXPECT_EQ(CZrCbFileSystem::GetFileAsText(path, content, reason), 0) << path;
        EXPECT_EQ(content, "untouched");
        EXPECT_GE(reason.Find(path), 0) << reason.GetString();
        EXPECT_EQ(CZrCbFileSystem::GetFileAsBinary(path, &buffer, reason), 0) << path;
    }
    EXPECT_EQ(buffer.GetSize(), bytes.size() + 4);
    CZrCbFileSystem::GetFileAsText("c:\\absent", content, reason);
    EXPECT_GE(reason.Find(platform::SystemErrorText(ERROR_FILE_NOT_FOUND)), 0);
}

TEST(FileSystem, DeletesAFileIfThereIsOne) {
    const TemporaryHome home;
    home.WriteFile("drive_c/d/f", "x");
    EXPECT_NE(CZrCbFileSystem::FileExists("c:\\d\\f"), 0);
    EXPECT_EQ(CZrCbFileSystem::DeleteFileSafely("c:\\d\\f"), eResult_Ok);
    EXPECT_EQ(CZrCbFileSystem::FileExists("c:\\d\\f"), 0);
    EXPECT_EQ(CZrCbFileSystem::DeleteFileSafely("c:\\d\\f"), eResult_Ok);
    EXPECT_EQ(CZrCbFileSystem::DeleteFileSafely("c:\\none\\f"), eResult_Ok);
    EXPECT_EQ(CZrCbFileSystem::DeleteFileSafely("c:\\d"), eResult_Failed);
}

TEST(Modules, NamesOnlyDirectoriesThatCanBeRead) {
    const TemporaryHome home;
    const DiagnosticRecorder recorder;
    const auto noGroup = static_cast<EZrAbAppGroup>(0);
    EXPECT_EQ(CZrAbModules::GetSettingsPath(eAppGroup_1, 1), "");
    EXPECT_EQ(CZrAbModules::GetModuleStaticDataPath(eAppGroup_2, eModule_HttpBase, 1), "");
    EXPECT_TRUE(recorder.Failures().empty());

    home.WriteFile("settings/x", "");
    home.WriteFile("data/group2/module15/x", "");
    const std::string settings = home.Path("settings") + "/";
    EXPECT_EQ(CZrAbModules::GetSettingsPath(static_cast<EZrAbAppGroup>(7), 1), settings.c_str());
    EXPECT_EQ(CZrAbModules::GetSettingsPath(noGroup, 1), "");
    EXPECT_EQ(CZrAbModules::GetModuleStaticDataPath(eAppGroup_2, eModule_ApiWrapper, 1),
              (home.Path("data/group2/module15") + "/").c_str());

    home.WriteFile("data/group1/module2", "a file");
    EXPECT_EQ(CZrAbModules::GetModuleStaticDataPath(eAppGroup_1, eModule_HttpBase, 1), "");
    EXPECT_EQ(recorder.Failures().size(), 1u);
}

TEST(ResourceHandling, PrefersTheNamedModulesTexts) {
    const StringResource strings[] = {{102, "other"}, {5000, "only here"}};
    AFX_EXTENSION_MODULE other;
    other.moduleName = "Other.dll";
    other.strings = strings;
    const CDynLinkLibrary registered(other);
    CString text;
    text.LoadString(102);
    EXPECT_EQ(text, "other");
    {
        const CZrAbResourceHandling library(eAppGroup_1, "ZrHttpBase3.dll", "");
        text.LoadString(102);
        EXPECT_EQ(text, "Keine Verbindung ins Internet");
        EXPECT_TRUE(text.LoadString(5000));
        const CZrAbResourceHandling unknown(eAppGroup_1, "Unknown.dll", "");
        text.LoadString(102);
        EXPECT_EQ(text, "Keine Verbindung ins Internet");
    }
    text.LoadString(102);
    EXPECT_EQ(text, "other");
}

TEST(RegistryHelpers, AskForRoomUntilTheValueFits) {
    MemoryRegistry registry;
    const platform::ScopedService<platform::RegistryStore> installed(registry);
    const BYTE bytes[] = {1, 0, 255};
    ASSERT_EQ(
        CZrCbRegistry::SetRegistryKeyValueBinary(HKEY_CURRENT_USER, "k", "n", bytes, 3, KEY_WRITE),
        0);
    BYTE buffer[4] = {9, 9, 9, 9};
    DWORD size = 2;
    const auto get = [&](const char* key) {
        return CZrCbRegistry::GetRegistryKeyValueBinary(HKEY_CURRENT_USER, key, "n", buffer, size,
                                                        KEY_READ);
    };
    EXPECT_EQ(get("k"), 234);
    EXPECT_EQ(size, 3u);
    EXPECT_EQ(buffer[0], 9);
    size = 4;
    EXPECT_EQ(get("k"), 0);
    EXPECT_EQ(size, 3u);
    EXPECT_EQ(std::vector<BYTE>(buffer, buffer + 4), (std::vector<BYTE>{1, 0, 255, 9}));
    EXPECT_EQ(get("absent"), 2);

    EXPECT_EQ(CZrCbRegistry::RegCopyTree(HKEY_CURRENT_USER, "k", HKEY_CURRENT_USER, "l"), 0);
    EXPECT_EQ(CZrCbRegistry::RegDelTree(HKEY_CURRENT_USER, "k"), 0);
    EXPECT_EQ(get("k"), 2);
    EXPECT_EQ(get("l"), 0);
}

// A clock whose tick count wraps within the wait.
class WrappingClock : public ManualClock {
public:
    DWORD TickCount() override { return ManualClock::TickCount() - 50; }
};

TEST(System, WaitsAboutTheTimeAlsoAcrossTheWrapOfTheTickCount) {
    WrappingClock clock;
    const platform::ScopedService<platform::Clock> installed(clock);
    CZrCbSystem::WaitTimeout(200, 1);
    EXPECT_GE(clock.TickCount(), 150u);
    EXPECT_LE(clock.TickCount(), 160u);
    CZrCbSystem::WaitTimeout(0, 1);
    EXPECT_LE(clock.TickCount(), 160u);
}

// Handles every message by posting the next one, for ever.
int messagesHandled = 0;
LRESULT PostAgain(HWND hWnd, UINT nMessage, WPARAM wParam, LPARAM lParam) {
    if (nMessage != WM_USER) return DefWindowProcA(hWnd, nMessage, wParam, lParam);
    ++messagesHandled;
    Sleep(1);
    PostMessageA(hWnd, WM_USER, 0, 0);
    return 0;
}

TEST(System, ServesMessagesWhileItWaitsAndEndsAlsoUnderAFloodOfThem) {
    ManualClock clock;
    const platform::ScopedService<platform::Clock> installed(clock);
    AfxRegisterWindowClass("PostAgain", PostAgain);
    const HWND window =
        CreateWindowExA(0, "PostAgain", "", 0, 0, 0, 1, 1, nullptr, nullptr, nullptr, nullptr);
    ASSERT_NE(window, nullptr);
    PostMessageA(window, WM_USER, 0, 0);
    CZrCbSystem::WaitTimeout(100, 1);
    EXPECT_EQ(messagesHandled, 100);
    EXPECT_EQ(clock.TickCount(), 100u);
    DestroyWindow(window);
}

TEST(System, KnowsProtectedModeUnlessToldOtherwise) {
    const TemporaryHome home;
    EXPECT_NE(CZrCbSystem::IsOperatingSystemWinVistaOrHigher(), 0);
    home.WriteFile("settings/platform.ini", "[Platform]\nZRHTTP_LEGACY_SYSTEM=1\n");
    EXPECT_EQ(CZrCbSystem::IsOperatingSystemWinVistaOrHigher(), 0);
}

} // namespace
