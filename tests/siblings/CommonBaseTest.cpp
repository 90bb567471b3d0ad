#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <platform/Clock.h>

#include "siblings/ZrAbResourceHandling.h"
#include "siblings/ZrCbFileSystem.h"
#include "siblings/ZrCbRegistry.h"
#include "siblings/ZrCbSystem.h"
#include "support/ManualClock.h"
#include "support/TemporaryHome.h"
#include "support/TestWindow.h"

namespace {

using test_support::ManualClock;
using test_support::TemporaryHome;

TEST(FileSystem, JoinsAndSplitsPaths) {
    const char* const kJoined[][3] = {{"/a", "b", "/a/b"},        {"/a/", "/b", "/a/b"},
                                      {"", "/b", "/b"},           {"/a", "", "/a"},
                                      {"c:\\x", "b", "c:\\x\\b"}, {"c:\\x\\", "b", "c:\\x\\b"}};
    for (const auto& [directory, name, path] : kJoined)
        EXPECT_EQ(CZrCbFileSystem::CombinePaths(directory, name), path);
    EXPECT_EQ(CZrCbFileSystem::CombinePaths("a", "", "b", "", "", "", "", "", "", "c"), "a/b/c");

    const char* const kSplit[][4] = {
        {"c:", "\\a.b\\", "n.tar", ".gz"}, {"", "/a.b/", "name", ""}, {"", "a/b\\", "", ".hidden"}};
    for (const auto& parts : kSplit) {
        const CString path = CString(parts[0]) + parts[1] + parts[2] + parts[3];
        CString found[4];
        CZrCbFileSystem::SplitPath(path, found[0], found[1], found[2], found[3]);
        for (int i = 0; i < 4; ++i)
            EXPECT_EQ(found[i], parts[i]) << path.GetString();
    }
}

TEST(FileSystem, ReadsWholeFilesOrSaysWhyNotAndDeletesThem) {
    const TemporaryHome home;
    std::string bytes(200'000, 'x');
    bytes[70'000] = '\0';
    home.WriteFile("drive_c/in/f.bin", bytes);
    CString content, reason;
    ASSERT_EQ(CZrCbFileSystem::GetFileAsText("c:\\in\\f.bin", content, reason), 1);
    EXPECT_EQ(content, CString(bytes));
    for (const char* path : {"c:\\in", "c:\\..\\x", "c:\\in\\absent"}) {
        EXPECT_EQ(CZrCbFileSystem::GetFileAsText(path, content, reason), 0) << path;
        EXPECT_GE(reason.Find(path), 0) << reason.GetString();
    }
    EXPECT_EQ(content, CString(bytes));

    EXPECT_EQ(CZrCbFileSystem::DeleteFileSafely("c:\\in\\f.bin"), eResult_Ok);
    EXPECT_EQ(CZrCbFileSystem::FileExists("c:\\in\\f.bin"), 0);
    EXPECT_EQ(CZrCbFileSystem::DeleteFileSafely("c:\\in\\f.bin"), eResult_Ok);
    EXPECT_EQ(CZrCbFileSystem::DeleteFileSafely("c:\\in"), eResult_Failed);
}

TEST(ResourceHandling, PrefersTheNamedModulesTexts) {
    const StringResource strings[] = {{102, "other"}, {5000, "only here"}};
    AFX_EXTENSION_MODULE other{"Other.dll", strings};
    const CDynLinkLibrary registered(other);
    const auto load = [](UINT id) {
        CString text;
        text.LoadString(id);
        return text;
    };
    EXPECT_EQ(load(102), "other");
    const CZrAbResourceHandling library(eAppGroup_1, "ZrHttpBase3.dll", "");
    const CZrAbResourceHandling unknown(eAppGroup_1, "Unknown.dll", "");
    EXPECT_EQ(load(102), "Keine Verbindung ins Internet");
    EXPECT_EQ(load(5000), "only here");
}

TEST(RegistryHelpers, AskForRoomUntilTheValueFits) {
    const TemporaryHome home;
    const HKEY user = HKEY_CURRENT_USER;
    const BYTE bytes[] = {1, 0, 255};
    ASSERT_EQ(CZrCbRegistry::SetRegistryKeyValueBinary(user, "k", "n", bytes, 3, KEY_WRITE), 0);
    std::vector<BYTE> buffer(4, 9);
    DWORD size = 2;
    const auto get = [&](const char* key) {
        return CZrCbRegistry::GetRegistryKeyValueBinary(user, key, "n", buffer.data(), size,
                                                        KEY_READ);
    };
    EXPECT_EQ(get("k"), 234);
    EXPECT_EQ(size, 3u);
    EXPECT_EQ(buffer[0], 9);
    EXPECT_EQ(get("k"), 0);
    EXPECT_EQ(buffer, (std::vector<BYTE>{1, 0, 255, 9}));
    EXPECT_EQ(CZrCbRegistry::RegCopyTree(user, "k", user, "l"), 0);
    EXPECT_EQ(CZrCbRegistry::RegDelTree(user, "k"), 0);
    EXPECT_EQ(get("k"), 2);
    EXPECT_EQ(get("l"), 0);
}

// A clock whose tick count wraps within the wait.
class WrappingClock : public ManualClock {
public:
    DWORD TickCount() override { return ManualClock::TickCount() - 50; }
};

// Handles every message by posting the next one, for ever.
int messagesHandled = 0;
LRESULT PostAgain(HWND hWnd, UINT nMessage, WPARAM wParam, LPARAM lParam) {
    if (nMessage != WM_USER) return DefWindowProcA(hWnd, nMessage, wParam, lParam);
    ++messagesHandled;
    Sleep(1);
    PostMessageA(hWnd, WM_USER, 0, 0);
    return 0;
}

TEST(System, WaitsAcrossTheWrapOfTheTickCountAndUnderAFloodOfMessages) {
    WrappingClock clock;
    const platform::ScopedService<platform::Clock> installed(clock);
    CZrCbSystem::WaitTimeout(200, 1);
    EXPECT_GE(clock.TickCount(), 150u);
    EXPECT_LE(clock.TickCount(), 160u);

    AfxRegisterWindowClass("PostAgain", PostAgain);
    const test_support::TestWindow window("", nullptr, "PostAgain");
    PostMessageA(window, WM_USER, 0, 0);
    CZrCbSystem::WaitTimeout(100, 1);
    EXPECT_EQ(messagesHandled, 100);
}

} // namespace
