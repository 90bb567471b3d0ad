// A browser application as a process and a window of its own: whether it is still there, and
// bringing it to the front while it shows a dialog.
#pragma once

#include <platform/Browser.h>

namespace BrowserSurfacing {

// False when the browser's process has gone.
bool IsAlive(IWebBrowser2& browser);

// While the browser's window is disabled, as it is under a dialog of the browser's own, brings it
// to the front and returns true; else does nothing. With isAtOnce, which that clears, without
// delay; otherwise after a pause in which the user gets hold of the window that is in front, none
// when it is the browser's already.
bool SurfaceDialog(IWebBrowser2& browser, BOOL& isAtOnce);

// Brings a window to the front, if there is such a window.
void BringToFront(HWND hWnd);

} // namespace BrowserSurfacing
