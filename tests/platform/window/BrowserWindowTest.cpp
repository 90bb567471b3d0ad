// Browser windows without a display.

#include <thread>

#include <gtest/gtest.h>

#include <platform/Window.h>

#include "window/BrowserWindow.h"

TEST(RememberedWindow, IsInTheTableWhileItLives) {
    auto window = platform::MakeRememberedWindow();
    const HWND handle = window->Handle();
    EXPECT_TRUE(IsWindow(handle));
    EXPECT_EQ(GetParent(handle), nullptr);
    EXPECT_FALSE(window->IsVisible());
    window->Show(true);
    EXPECT_TRUE(window->IsVisible() && IsWindowVisible(handle));
    EXPECT_TRUE(IsWindowEnabled(handle));
    window->SetEnabled(false);
    EXPECT_FALSE(IsWindowEnabled(handle));
    EXPECT_TRUE(SetForegroundWindow(handle));
    EXPECT_EQ(GetForegroundWindow(), handle);
    window.reset();
    EXPECT_FALSE(IsWindow(handle) || IsWindowEnabled(handle));
    EXPECT_EQ(GetForegroundWindow(), nullptr);
}

TEST(RememberedWindow, MayOutliveItsThread) {
    std::unique_ptr<platform::BrowserWindow> window;
    std::thread([&] { window = platform::MakeRememberedWindow(); }).join();
    EXPECT_FALSE(IsWindow(window->Handle()));
    window->Show(true);
    EXPECT_FALSE(window->IsVisible());
}
