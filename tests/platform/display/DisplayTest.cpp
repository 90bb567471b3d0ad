// Windows of an application on a display, with and without a window manager.

#include <atomic>
#include <memory>
#include <string>

#include <gtest/gtest.h>

#include <platform/Window.h>

#include "XApplication.h"
#include "support/PumpUntil.h"
#include "support/XServer.h"
#include "window/BrowserWindow.h"

using namespace test_support;
using display_test::XApplication;
using platform::BrowserWindow;
using platform::Display;
using platform::WindowWatch;

namespace {

using std::chrono::milliseconds;

constexpr std::chrono::seconds kPatience{10};
constexpr milliseconds kNoPatience{50}; // for what must not come

HWND HandleOf(xcb_window_t window) {
    return reinterpret_cast<HWND>(std::uintptr_t{window});
}

xcb_window_t IdOf(const BrowserWindow& window) {
    return static_cast<xcb_window_t>(reinterpret_cast<std::uintptr_t>(window.Handle()));
}

class Displays : public testing::TestWithParam<WindowManager> {
protected:
    bool HasWindowManager() const { return GetParam() != WindowManager::none; }

    std::unique_ptr<BrowserWindow> TakeNew(const char* title) {
        const xcb_window_t made = application.Make("browser (1)", title);
        PumpFor(milliseconds(20)); // a browser takes longer
        application.Map(made);
        auto window = watch->TakeWindow(kPatience);
        if (!window) throw std::runtime_error("the window was not found");
        window->OnVisibleChanged([this](bool isVisible) {
            lastReport = isVisible;
            ++reports;
        });
        return window;
    }
    bool IsScreenEmpty() const { return server.Screenshot() == empty; }

    XServer server{GetParam()};
    const std::vector<std::uint8_t> empty = server.Screenshot();
    XApplication application{server.Name()};
    std::shared_ptr<Display> display = Display::Open();
    std::unique_ptr<WindowWatch> watch = display->Watch("(1)");
    std::atomic<int> reports{0};
    std::atomic<bool> lastReport{false};
};

INSTANTIATE_TEST_SUITE_P(Windows, Displays,
                         testing::Values(WindowManager::none, WindowManager::openbox),
                         [](const auto& test) {
                             return test.param == WindowManager::none ? "Bare" : "Openbox";
                         });

} // namespace

TEST_P(Displays, AWindowThatAppearsIsKnownAndNeverSeen) {
    const xcb_window_t made = application.Make("browser (1)", "Z\xC3\xBCrich");
    EXPECT_EQ(watch->TakeWindow(kNoPatience), nullptr) << "before it is mapped";
    application.Map(made);
    const auto window = watch->TakeWindow(kPatience);
    ASSERT_TRUE(window);
    EXPECT_EQ(window->Handle(), HandleOf(made));
    EXPECT_TRUE(IsWindow(window->Handle()));
    SetActiveWindow(window->Handle());
    EXPECT_EQ(GetActiveWindow(), window->Handle());
    EXPECT_FALSE(window->IsVisible());
    EXPECT_TRUE(IsScreenEmpty());
    EXPECT_EQ(application.TakeTimesSeen(), 0);
    EXPECT_EQ(watch->TakeWindow(kNoPatience), nullptr) << "only once";

    EXPECT_EQ(FindWindowA(nullptr, "Z\xFCrich"), window->Handle());
}

TEST_P(Displays, AWindowThatIsMappedAtOnceIsWithdrawnAllTheSame) {
    const xcb_window_t made = application.MakeMapped("browser (1)");
    const auto window = watch->TakeWindow(kPatience);
    ASSERT_TRUE(window);
    EXPECT_EQ(window->Handle(), HandleOf(made));
    PumpUntil([&] { return IsScreenEmpty(); }, "withdrawn");
    window->Show(true);
    EXPECT_TRUE(window->IsVisible());
}

TEST_P(Displays, OnlyWatchedApplicationsAreTouchedAndOnlyWhileWatched) {
    application.MakeMapped("browser (2)");
    PumpUntil([&] { return application.TakeTimesSeen() > 0; }, "another application's window");
    watch.reset();
    const xcb_window_t late = application.MakeMapped("browser (1)");
    PumpUntil([&] { return application.TakeTimesSeen() > 0; }, "a window nobody watches for");
    EXPECT_FALSE(IsWindow(HandleOf(late)));
}

TEST_P(Displays, AWindowHeldAsideGoesItsOwnWayWhenTheWatchEnds) {
    const xcb_window_t made = application.Make("browser (1)", "held");
    EXPECT_EQ(watch->TakeWindow(kNoPatience), nullptr);
    watch.reset();
    PumpFor(kNoPatience);
    application.Map(made);
    PumpUntil([&] { return application.TakeTimesSeen() > 0; }, "seen");
}

TEST_P(Displays, ShowAndHideAreDoneWhenTheyReturnAndNotReported) {
    const auto window = TakeNew("page");
    for (int round = 0; round < 3; ++round) {
        window->Show(true);
        EXPECT_TRUE(window->IsVisible() && IsWindowVisible(window->Handle()));
        EXPECT_FALSE(IsScreenEmpty());
        window->Show(false);
        EXPECT_FALSE(window->IsVisible() || IsWindowVisible(window->Handle()));
        PumpUntil([&] { return IsScreenEmpty(); }, "its frame gone, too");
    }
    EXPECT_EQ(reports, 0);
    ShowWindow(window->Handle(), SW_SHOW); // by somebody who only has the handle
    EXPECT_TRUE(window->IsVisible());
    PumpUntil([&] { return reports == 1; }, "report");
    EXPECT_TRUE(lastReport);
}

TEST_P(Displays, TheUsersHidingAndClosingIsReported) {
    const auto window = TakeNew("page");
    const xcb_window_t id = IdOf(*window);
    window->Show(true);
    if (HasWindowManager())
        application.Iconify(id);
    else
        application.Unmap(id);
    PumpUntil([&] { return reports == 1; }, "hidden");
    EXPECT_FALSE(lastReport || window->IsVisible());
    window->Show(true);
    EXPECT_TRUE(window->IsVisible());
    EXPECT_FALSE(IsScreenEmpty());
    EXPECT_EQ(reports, 1);

    application.Destroy(id);
    // It is unmapped first, and destroyed then.
    PumpUntil([&] { return reports == 2 && !IsWindow(window->Handle()); }, "closed");
    EXPECT_FALSE(lastReport || window->IsVisible());
    window->Show(true);
    EXPECT_FALSE(window->IsVisible());
}

TEST_P(Displays, TheForegroundWindowIsTheOneWithTheKeyboard) {
    const auto first = TakeNew("first");
    const auto second = TakeNew("second");
    const auto isInFront = [this](HWND window) {
        return GetForegroundWindow() == window && HandleOf(application.KeyboardIsAt()) == window;
    };
    first->Show(true);
    second->Show(true);
    for (const HWND window : {first->Handle(), second->Handle(), first->Handle()}) {
        SetForegroundWindow(window);
        PumpUntil([&] { return isInFront(window); }, "foreground");
    }

    const xcb_window_t dialog = application.MakeDialogOf(IdOf(*first), "question");
    application.Map(dialog);
    PumpUntil([&] { return IsWindowVisible(HandleOf(dialog)) != FALSE; }, "dialog");
    application.TakeKeyboard(dialog);
    PumpUntil([&] { return GetForegroundWindow() == HandleOf(dialog); }, "dialog in front");
    EXPECT_EQ(GetParent(GetForegroundWindow()), first->Handle());
    EXPECT_EQ(GetParent(first->Handle()), nullptr);
    EXPECT_EQ(FindWindowA(nullptr, "question"), HandleOf(dialog));
    application.Destroy(dialog);
    PumpUntil([&] { return !IsWindow(HandleOf(dialog)); }, "dialog gone");
    EXPECT_NE(GetForegroundWindow(), HandleOf(dialog));
}

TEST_P(Displays, ADisplayThatDiesHidesItsWindows) {
    const auto window = TakeNew("page");
    window->Show(true);
    server.End();
    PumpUntil([&] { return !IsWindow(window->Handle()); }, "gone");
    PumpUntil([&] { return reports == 1; }, "hidden");
    EXPECT_FALSE(lastReport || window->IsVisible());
    window->Show(true);
    SetForegroundWindow(window->Handle());
    EXPECT_FALSE(window->IsVisible());
    EXPECT_EQ(watch->TakeWindow(kPatience), nullptr);
    EXPECT_EQ(display->Watch("later")->TakeWindow(kPatience), nullptr);
    EXPECT_EQ(Display::Open(), nullptr);

    const XServer another;
    const auto opened = Display::Open();
    ASSERT_TRUE(opened);
    EXPECT_EQ(opened->Name(), another.Name());
}

TEST(Display, IsOneForTheProcessAndMayBeMissing) {
    {
        const ScopedVariable none("DISPLAY", nullptr);
        EXPECT_EQ(Display::Open(), nullptr);
    }
    const XServer server;
    const auto first = Display::Open();
    ASSERT_TRUE(first);
    EXPECT_EQ(first->Name(), server.Name());
    EXPECT_EQ(Display::Open(), first);
    const ScopedVariable headless("ZRHTTP_HEADLESS", "1");
    EXPECT_EQ(Display::Open(), nullptr);
}
