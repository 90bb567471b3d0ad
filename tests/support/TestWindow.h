// A plain window of the test's own.
#pragma once

#include <platform/Window.h>

namespace test_support {

// Exists for the life of the object, unless it is destroyed before.
class TestWindow {
public:
    explicit TestWindow(const char* title = "window", HWND parent = nullptr,
                        const char* windowClass = "LISTBOX")
        : m_window(CreateWindowExA(0, windowClass, title, WS_VISIBLE, 0, 0, 9, 9, parent, nullptr,
                                   nullptr, nullptr)) {}
    ~TestWindow() { DestroyWindow(m_window); }
    TestWindow(const TestWindow&) = delete;
    TestWindow& operator=(const TestWindow&) = delete;

    operator HWND() const { return m_window; }
    // As browsers give the handle of their window.
    LONG_PTR Number() const { return reinterpret_cast<LONG_PTR>(m_window); }

private:
    HWND m_window;
};

} // namespace test_support
