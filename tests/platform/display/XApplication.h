// A program with windows on an X display, played by the test.
#pragma once

#include <string>

#include <xcb/xcb_ewmh.h>

#include "support/XServer.h"

namespace display_test {

// Every call returns when the server has done it. A mapped window is a red area.
class XApplication {
public:
    explicit XApplication(const std::string& display);
    ~XApplication();
    XApplication(const XApplication&) = delete;
    XApplication& operator=(const XApplication&) = delete;

    // Not mapped yet. `instance`: first part of the WM_CLASS.
    xcb_window_t Make(const std::string& instance, const std::string& title);
    xcb_window_t MakeDialogOf(xcb_window_t owner, const std::string& title);
    // Makes and maps in one go, so that nobody can look at it in between.
    xcb_window_t MakeMapped(const std::string& instance);
    void Map(xcb_window_t window);
    void Unmap(xcb_window_t window);
    void Iconify(xcb_window_t window);
    void Destroy(xcb_window_t window);
    void TakeKeyboard(xcb_window_t window);
    xcb_window_t KeyboardIsAt();

    // How often a window of the program could have been seen since the last call.
    int TakeTimesSeen();

private:
    xcb_window_t Create(const std::string& instance, const std::string& title);
    void Sync();

    test_support::XConnection m_connection;
    xcb_screen_t* m_screen;
    xcb_ewmh_connection_t m_names{};
};

} // namespace display_test
