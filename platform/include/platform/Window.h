// Windows: a process-wide table of handles. A window belongs to the thread that created it and
// goes away with that thread at the latest.
#pragma once

#include "Export.h"
#include "Messages.h"
#include "Services.h"
#include "String.h"

ZRHB_EXPORT_BEGIN

using WNDPROC = LRESULT (*)(HWND hWnd, UINT nMessage, WPARAM wParam, LPARAM lParam);

constexpr DWORD WS_VISIBLE = 0x10000000;
constexpr DWORD WS_CHILD = 0x40000000;
constexpr int SW_HIDE = 0;
constexpr int SW_SHOW = 5;
constexpr UINT WM_DESTROY = 0x0002;

namespace platform {

struct WindowRequest {
    DWORD exStyle = 0;
    CString className;
    CString title;
    DWORD style = 0;
    int x = 0;
    int y = 0;
    int width = 0;
    int height = 0;
    HWND parent = nullptr;
};

// Creation only: what a test lets fail. Null with GetLastError() on failure.
class WindowFactory {
public:
    virtual ~WindowFactory() = default;
    static WindowFactory& Real();
    virtual HWND Create(const WindowRequest& request) = 0;
};

} // namespace platform

// Makes a class known to CreateWindowExA. "LISTBOX" is known from the start.
BOOL AfxRegisterWindowClass(const char* pszClassName, WNDPROC pfnWndProc);

HWND GetDesktopWindow();
// hMenu, hInstance and lpParam must be null.
HWND CreateWindowExA(DWORD dwExStyle, const char* pszClassName, const char* pszTitle, DWORD dwStyle,
                     int x, int y, int nWidth, int nHeight, HWND hWndParent, HMENU hMenu,
                     HINSTANCE hInstance, void* lpParam);
// Sends WM_DESTROY, then removes the window and its children. Only the owner's thread may.
BOOL DestroyWindow(HWND hWnd);
LRESULT DefWindowProcA(HWND hWnd, UINT nMessage, WPARAM wParam, LPARAM lParam);

BOOL IsWindow(HWND hWnd);
BOOL IsWindowVisible(HWND hWnd);
// Returns whether the window was visible before.
BOOL ShowWindow(HWND hWnd, int nCmdShow);
// A disabled window takes no input; windows start enabled.
BOOL IsWindowEnabled(HWND hWnd);
// Returns whether the window was disabled before.
BOOL EnableWindow(HWND hWnd, BOOL bEnable);
BOOL SetWindowTextA(HWND hWnd, const char* pszTitle);
CString AfxGetWindowText(HWND hWnd);

// The front-most top-level window with exactly this title; pszClassName null for any class.
HWND FindWindowA(const char* pszClassName, const char* pszTitle);
BOOL BringWindowToTop(HWND hWnd);
BOOL SetForegroundWindow(HWND hWnd);
HWND GetForegroundWindow();
// Returns the window that was active before. Only for windows of the calling thread.
HWND SetActiveWindow(HWND hWnd);
HWND GetActiveWindow();
HWND GetParent(HWND hWnd);

ZRHB_EXPORT_END
