// How a container tells a control which window it lives in.
#pragma once

#include <platform/Unknown.h>

namespace platform {

struct IHostedControl : IUnknown {
    static constexpr IID Iid{
        0x5B0E3C61, 0x7A44, 0x4E0B, {0x9C, 0x1D, 0x52, 0x8E, 0x60, 0x3F, 0xA7, 0x19}};
    // The window is not owned; null ends the hosting. On the control's thread.
    virtual HRESULT SetHostWindow(HWND hWnd) = 0;

protected:
    ~IHostedControl() = default;
};

} // namespace platform
