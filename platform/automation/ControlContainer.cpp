#include "automation/ControlContainer.h"

#include "browser/common/HostedControl.h"
#include "window/WindowTable.h"

namespace platform {

HRESULT ControlContainer::Attach(IUnknown* pControl, HWND hWnd, IUnknown** ppContainer) {
    if (!pControl) return E_INVALIDARG;
    CComPtr<IUnknown> container;
    container.Attach(MakeObject<ControlContainer>(pControl).Detach());
    CComPtr<IUnknown> previous; // released outside the window table's lock
    const bool isAttached = WindowTable::Get().Visit(hWnd, [&](WindowState& state) {
        previous = std::move(state.container);
        state.container = container;
    });
    if (!isAttached) return E_INVALIDARG;

    CComPtr<IHostedControl> hosted;
    if (SUCCEEDED(CComPtr<IUnknown>(pControl).QueryInterface(&hosted))) hosted->SetHostWindow(hWnd);
    if (ppContainer) *ppContainer = container.Detach();
    return S_OK;
}

} // namespace platform
