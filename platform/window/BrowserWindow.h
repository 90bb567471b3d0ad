// The top-level windows of a browser application, as the library's window functions see them.
#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include <platform/Types.h>

namespace platform {

// In the window table under its handle for as long as the object lives: found by its title,
// brought to the front, asked whether it is enabled. Belongs to the thread that makes it. The
// destructor leaves a window on the display as it is.
class BrowserWindow {
public:
    virtual ~BrowserWindow() = default;

    // On a display the number of the X window. Never null.
    virtual HWND Handle() const = 0;
    virtual void Show(bool isVisible) = 0;
    virtual bool IsVisible() const = 0;
    // Disabled while a dialog of the page is open. Input is not kept away from a window on a
    // display: the dialog is part of it.
    virtual void SetEnabled(bool isEnabled) = 0;
    // Called, on a thread of the display's, when somebody else has shown, hidden, iconified or
    // closed the window. Set once, before the window is shown.
    virtual void OnVisibleChanged(std::function<void(bool isVisible)> handler) = 0;
};

// Without a display: a window that exists in the table only.
std::unique_ptr<BrowserWindow> MakeRememberedWindow();

// Watches for the windows of one application and withdraws each as soon as it appears.
class WindowWatch {
public:
    virtual ~WindowWatch() = default;
    // The oldest window of the application that has not been taken yet, withdrawn; null when none
    // has appeared within the time.
    virtual std::unique_ptr<BrowserWindow> TakeWindow(std::chrono::milliseconds patience) = 0;
};

// A connection to an X display, with a thread that serves its events.
class Display {
public:
    virtual ~Display() = default;
    // The display that the environment variable DISPLAY names. Null when there is none, it does
    // not answer, or the setting ZRHTTP_HEADLESS is 1. One connection a process, shared for as
    // long as somebody holds it; made anew when it has broken.
    static std::shared_ptr<Display> Open();
    virtual const std::string& Name() const = 0;
    // To be called before the application starts. `instance` is how the first part of
    // its windows' WM_CLASS ends.
    virtual std::unique_ptr<WindowWatch> Watch(const std::string& instance) = 0;
};

} // namespace platform
