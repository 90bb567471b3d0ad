#include "backends/BrowserSurfacing.h"

#include <utility>

#include <platform/CWnd.h>
#include <platform/Clock.h>

namespace {

constexpr DWORD kPauseBehindDialogMs = 300;
constexpr DWORD kPauseBehindOthersMs = 500;

// Null when the browser does not tell, or there is no such window.
CWnd* WindowOf(IWebBrowser2& browser) {
    VARIANT_BOOL visible = VARIANT_FALSE;
    browser.get_Visible(&visible);
    LONG_PTR window = 0;
    if (FAILED(browser.get_HWND(&window))) return nullptr;
    return CWnd::FromHandle(reinterpret_cast<HWND>(window));
}

bool IsSame(const CWnd* window, const CWnd& other) {
    return window && window->GetSafeHwnd() == other.GetSafeHwnd();
}

void PauseAndFront(CWnd& window, DWORD dwMilliseconds) {
    Sleep(dwMilliseconds);
    window.SetForegroundWindow();
}

} // namespace

namespace BrowserSurfacing {

bool IsAlive(IWebBrowser2& browser) {
    VARIANT_BOOL visible = VARIANT_FALSE;
    return SUCCEEDED(browser.get_Visible(&visible));
}

bool SurfaceDialog(IWebBrowser2& browser, BOOL& isAtOnce) {
    CWnd* const window = WindowOf(browser);
    if (!window || window->IsWindowEnabled()) return false;
    const CWnd* const foreground = CWnd::GetForegroundWindow();
    if (std::exchange(isAtOnce, FALSE))
        window->SetForegroundWindow();
    else if (foreground && IsSame(foreground->GetParent(), *window))
        PauseAndFront(*window, kPauseBehindDialogMs);
    else if (!IsSame(foreground, *window))
        PauseAndFront(*window, kPauseBehindOthersMs);
    window->BringWindowToTop();
    return true;
}

void BringToFront(HWND hWnd) {
    CWnd* const window = CWnd::FromHandle(hWnd);
    if (!window) return;
    window->SetForegroundWindow();
    window->BringWindowToTop();
}

} // namespace BrowserSurfacing
