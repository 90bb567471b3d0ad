#include <platform/Apartment.h>
#include <platform/Automation.h>

#include "automation/ClassTable.h"
#include "automation/ControlContainer.h"
#include "automation/MemoryStream.h"
#include "browser/BrowserClasses.h"

namespace platform {

namespace {

class SystemAutomation final : public AutomationService {
public:
    // Every thread has its apartment from its first use on; there is nothing else to set up.
    HRESULT Initialize() override {
        Apartment::OfThisThread();
        return S_OK;
    }

    HRESULT CreateInstance(REFCLSID clsid, DWORD, REFIID iid, void** ppObject) override {
        const HRESULT result = ClassTable::Get().Create(clsid, iid, ppObject);
        if (result != REGDB_E_CLASSNOTREG) return result;
        // Only now, so that classes that somebody has registered come first.
        RegisterBrowserClasses();
        return ClassTable::Get().Create(clsid, iid, ppObject);
    }

    HRESULT CreateMemoryStream(IStream** ppStream) override {
        *ppStream = MakeObject<MemoryStream>().Detach();
        return S_OK;
    }

    HRESULT AttachControl(IUnknown* pControl, HWND hWnd, IUnknown** ppContainer) override {
        return ControlContainer::Attach(pControl, hWnd, ppContainer);
    }
};

CComPtr<IConnectionPoint> FindPoint(IUnknown* source, REFIID iid) {
    CComPtr<IConnectionPointContainer> container;
    CComPtr<IConnectionPoint> point;
    if (source && SUCCEEDED(CComPtr<IUnknown>(source).QueryInterface(&container)))
        container->FindConnectionPoint(iid, &point);
    return point;
}

} // namespace

AutomationService& AutomationService::Real() {
    static SystemAutomation service;
    return service;
}

} // namespace platform

using platform::AutomationService;
using platform::Current;

HRESULT CoInitialize(void*) {
    platform::Apartment::OfThisThread();
    return S_OK;
}

HRESULT OleInitialize(void*) {
    return Current<AutomationService>().Initialize();
}

HRESULT CoCreateInstance(REFCLSID clsid, IUnknown* pOuter, DWORD dwClsContext, REFIID iid,
                         void** ppObject) {
    if (!ppObject) return E_POINTER;
    *ppObject = nullptr;
    if (pOuter) return E_INVALIDARG;
    return Current<AutomationService>().CreateInstance(clsid, dwClsContext, iid, ppObject);
}

HRESULT CreateStreamOnHGlobal(void* hGlobal, BOOL, IStream** ppStream) {
    if (!ppStream || hGlobal) return E_INVALIDARG;
    *ppStream = nullptr;
    return Current<AutomationService>().CreateMemoryStream(ppStream);
}

HRESULT AtlAxAttachControl(IUnknown* pControl, HWND hWnd, IUnknown** ppContainer) {
    if (ppContainer) *ppContainer = nullptr;
    return Current<AutomationService>().AttachControl(pControl, hWnd, ppContainer);
}

// Hosting is always available here.
void AfxEnableControlContainer(void*) {}

BOOL AfxConnectionAdvise(IUnknown* pSource, REFIID iid, IUnknown* pSink, BOOL bRefCount,
                         DWORD* pdwCookie) {
    const auto point = platform::FindPoint(pSource, iid);
    if (!point || FAILED(point->Advise(pSink, pdwCookie))) return FALSE;
    // The connection always counts a reference; a sink that does not want that gives one back.
    if (!bRefCount) pSink->Release();
    return TRUE;
}

BOOL AfxConnectionUnadvise(IUnknown* pSource, REFIID iid, IUnknown* pSink, BOOL bRefCount,
                           DWORD dwCookie) {
    const auto point = platform::FindPoint(pSource, iid);
    if (!point) return FALSE;
    if (!bRefCount) pSink->AddRef(); // for the reference that the connection now releases
    if (SUCCEEDED(point->Unadvise(dwCookie))) return TRUE;
    if (!bRefCount) pSink->Release();
    return FALSE;
}
