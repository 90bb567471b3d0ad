// Enabled windows, and browser windows without a display.

#include <thread>

#include <gtest/gtest.h>

#include <platform/Window.h>

#include "window/BrowserWindow.h"

TEST(Windows, AreEnabledUntilSomebodyDisablesThem) {
    const HWND window =
        CreateWindowExA(0, "LISTBOX", "list", 0, 0, 0, 1, 1, nullptr, nullptr, nullptr, nullptr);
    EXPECT_TRUE(IsWindowEnabled(window));
    EXPECT_FALSE(EnableWindow(window, FALSE));
    EXPECT_FALSE(IsWindowEnabled(window));
    EXPECT_TRUE(EnableWindow(window, TRUE)) << "it was disabled";
    EXPECT_TRUE(IsWindowEnabled(window));
    DestroyWindow(window);
    EXPECT_FALSE(IsWindowEnabled(window) || EnableWindow(window, FALSE));
}

TEST(RememberedWindow, IsInTheTableWhileItLives) {
    auto window = platform::MakeRememberedWindow();
    const HWND handle = window->Handle();
    EXPECT_TRUE(IsWindow(handle));
    EXPECT_EQ(GetParent(handle), nullptr);
    window->SetTitle("Kontoauszug \xE2\x82\xAC");
    EXPECT_EQ(FindWindowA(nullptr, "Kontoauszug \x80"), handle);
    EXPECT_FALSE(window->IsVisible());
    window->Show(true);
    EXPECT_TRUE(window->IsVisible() && IsWindowVisible(handle));
    window->SetEnabled(false);
    EXPECT_FALSE(IsWindowEnabled(handle));

    const auto other = platform::MakeRememberedWindow();
    EXPECT_NE(other->Handle(), handle);
    EXPECT_TRUE(SetForegroundWindow(handle));
    EXPECT_EQ(GetForegroundWindow(), handle);
    window.reset();
    EXPECT_FALSE(IsWindow(handle));
    EXPECT_EQ(GetForegroundWindow(), nullptr);
}

TEST(RememberedWindow, MayOutliveItsThread) {
    std::unique_ptr<platform::BrowserWindow> window;
    std::thread([&] { window = platform::MakeRememberedWindow(); }).join();
    EXPECT_FALSE(IsWindow(window->Handle()));
    window->Show(true);
    EXPECT_FALSE(window->IsVisible());
}
