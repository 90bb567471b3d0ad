// The browser object of one frame.
#pragma once

#include "browser/common/BrowserObject.h"

namespace platform {

// What events about a frame pass along: its document, its location, its state. Only the page
// decides where a frame goes.
class FrameBrowser final : public BrowserObject {
protected:
    HRESULT StartNavigation(NavigationRequest) override { return E_NOTIMPL; }
    HRESULT StartNewWindow(NavigationRequest) override { return E_NOTIMPL; }
    void StopLoading() override {}
    void EndEngine() override {}
};

} // namespace platform
