#include <platform/BrowserSurroundings.h>

#include "browser/chromium/ChromiumProcess.h"
#include "window/BrowserWindow.h"

namespace platform {

CString ChromiumFileName() {
    return CString(FindChromium().value_or(""));
}

CString BrowserDisplayName() {
    const auto display = Display::Open();
    return display ? CString(display->Name()) : CString();
}

} // namespace platform
