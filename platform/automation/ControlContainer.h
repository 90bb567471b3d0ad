// What hosts a control in a window.
#pragma once

#include <platform/Automation.h>

namespace platform {

// Owned by its window (until that is destroyed) and by whoever holds a reference.
class ControlContainer final : public ComObject<IUnknown> {
public:
    // E_INVALIDARG without a control or for a window that does not exist; ppContainer may be null.
    static HRESULT Attach(IUnknown* pControl, HWND hWnd, IUnknown** ppContainer);
    explicit ControlContainer(IUnknown* control) : m_control(control) {}

private:
    const CComPtr<IUnknown> m_control;
};

} // namespace platform
