#include <platform/LastError.h>
#include <platform/Window.h>

#include "window/ForeignWindow.h"
#include "window/MessageQueue.h"
#include "window/WindowTable.h"

using platform::WindowState;
using platform::WindowTable;

namespace platform {

namespace {

class TableWindowFactory final : public WindowFactory {
public:
    HWND Create(const WindowRequest& request) override {
        return WindowTable::Get().Create(request);
    }
};

// The active window of the calling thread.
thread_local HWND activeWindow = nullptr;

} // namespace

WindowFactory& WindowFactory::Real() {
    static TableWindowFactory factory;
    return factory;
}

} // namespace platform

namespace {

template <class TResult>
TResult Ask(HWND hWnd, TResult fallback, TResult (*answer)(const WindowState&)) {
    WindowTable::Get().Visit(hWnd, [&](WindowState& state) { fallback = answer(state); });
    return fallback;
}

} // namespace

BOOL AfxRegisterWindowClass(const char* pszClassName, WNDPROC pfnWndProc) {
    return WindowTable::Get().RegisterClass(pszClassName, pfnWndProc) ? TRUE : FALSE;
}

HWND GetDesktopWindow() {
    return reinterpret_cast<HWND>(std::uintptr_t{0x10001});
}

HWND CreateWindowExA(DWORD dwExStyle, const char* pszClassName, const char* pszTitle, DWORD dwStyle,
                     int x, int y, int nWidth, int nHeight, HWND hWndParent, HMENU hMenu,
                     HINSTANCE hInstance, void* lpParam) {
    if (hMenu || hInstance || lpParam) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return nullptr;
    }
    return platform::Current<platform::WindowFactory>().Create(
        {dwExStyle, pszClassName, pszTitle, dwStyle, x, y, nWidth, nHeight, hWndParent});
}

BOOL DestroyWindow(HWND hWnd) {
    return WindowTable::Get().Destroy(hWnd) ? TRUE : FALSE;
}

LRESULT DefWindowProcA(HWND, UINT, WPARAM, LPARAM) {
    return 0;
}

BOOL IsWindow(HWND hWnd) {
    return WindowTable::Get().Contains(hWnd) ? TRUE : FALSE;
}

BOOL IsWindowVisible(HWND hWnd) {
    return Ask<BOOL>(hWnd, FALSE, [](const WindowState& state) { return BOOL{state.isVisible}; });
}

BOOL ShowWindow(HWND hWnd, int nCmdShow) {
    const bool isVisible = nCmdShow != SW_HIDE;
    BOOL wasVisible = FALSE;
    std::shared_ptr<platform::ForeignWindow> foreign;
    WindowTable::Get().Visit(hWnd, [&](WindowState& state) {
        wasVisible = state.isVisible;
        foreign = state.foreign;
        if (!foreign) state.isVisible = isVisible;
    });
    if (foreign) foreign->Show(isVisible);
    return wasVisible;
}

BOOL IsWindowEnabled(HWND hWnd) {
    return Ask<BOOL>(hWnd, FALSE, [](const WindowState& state) { return BOOL{state.isEnabled}; });
}

BOOL EnableWindow(HWND hWnd, BOOL bEnable) {
    BOOL wasDisabled = FALSE;
    WindowTable::Get().Visit(hWnd, [&](WindowState& state) {
        wasDisabled = !state.isEnabled;
        state.isEnabled = bEnable != FALSE;
    });
    return wasDisabled;
}

BOOL SetWindowTextA(HWND hWnd, const char* pszTitle) {
    return WindowTable::Get().Visit(hWnd, [&](WindowState& state) { state.made.title = pszTitle; });
}

CString AfxGetWindowText(HWND hWnd) {
    return Ask<CString>(hWnd, CString(), [](const WindowState& state) { return state.made.title; });
}

HWND FindWindowA(const char* pszClassName, const char* pszTitle) {
    return WindowTable::Get().Find(pszClassName, pszTitle);
}

BOOL BringWindowToTop(HWND hWnd) {
    return WindowTable::Get().BringToTop(hWnd) ? TRUE : FALSE;
}

BOOL SetForegroundWindow(HWND hWnd) {
    return WindowTable::Get().SetForeground(hWnd) ? TRUE : FALSE;
}

HWND GetForegroundWindow() {
    return WindowTable::Get().GetForeground();
}

HWND SetActiveWindow(HWND hWnd) {
    const auto& own = platform::MessageQueue::OfThisThread();
    bool isOwn = false;
    WindowTable::Get().Visit(hWnd, [&](WindowState& state) { isOwn = state.queue == own; });
    if (!isOwn) return nullptr;
    return std::exchange(platform::activeWindow, hWnd);
}

HWND GetActiveWindow() {
    return IsWindow(platform::activeWindow) ? platform::activeWindow : nullptr;
}

HWND GetParent(HWND hWnd) {
    return Ask<HWND>(hWnd, nullptr, [](const WindowState& state) { return state.parent; });
}
