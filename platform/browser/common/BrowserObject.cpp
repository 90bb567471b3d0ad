#include "browser/common/BrowserObject.h"

#include <platform/Diagnostics.h>

#include "browser/common/BrowserEvents.h"

namespace platform {
namespace {

VARIANT_BOOL VariantBool(bool value) {
    return value ? VARIANT_TRUE : VARIANT_FALSE;
}

// What every property answers: `value()` while the browser lives, an empty value afterwards.
template <class T, class TValue>
HRESULT Answer(bool isGone, T* pResult, TValue value) {
    if (!pResult) return E_POINTER;
    *pResult = T{};
    if (isGone) return RPC_E_DISCONNECTED;
    *pResult = value();
    return S_OK;
}

} // namespace

void OwnerLink::Post(std::function<void(BrowserObject&)> work) {
    m_apartment->Post([self = shared_from_this(), work = std::move(work)] {
        if (!self->m_object) return;
        const CComPtr<BrowserObject> keep(self->m_object);
        work(*keep);
    });
}

BrowserObject::BrowserObject()
    : m_events(MakeObject<ConnectionPoint>()), m_link(std::make_shared<OwnerLink>(*this)) {}

BrowserObject::~BrowserObject() {
    m_link->Detach();
}

void* BrowserObject::FindOther(REFIID iid) {
    return iid == IDispatch::Iid ? Dispatch() : nullptr;
}

HRESULT BrowserObject::Navigate2(VARIANT* URL, VARIANT* Flags, VARIANT*, VARIANT* PostData,
                                 VARIANT* Headers) {
    if (IsGone()) return RPC_E_DISCONNECTED;
    std::string error;
    auto request = ParseNavigation(URL, Flags, PostData, Headers, error);
    if (!request) {
        m_statusText = error;
        ReportDiagnostic(Severity::failure, CString("cannot navigate: " + error));
        return E_INVALIDARG;
    }
    if (request->flags & navOpenInNewWindow) return StartNewWindow(std::move(*request));
    StopLoading();
    m_document.Release();
    m_statusText.clear();
    m_replyStatus = 0;
    m_readyState = READYSTATE_LOADING;
    m_isBusy = true;
    return StartNavigation(std::move(*request));
}

HRESULT BrowserObject::Stop() {
    if (IsGone()) return RPC_E_DISCONNECTED;
    StopLoading();
    m_isBusy = false;
    return S_OK;
}

HRESULT BrowserObject::Quit() {
    if (m_hasQuit) return RPC_E_DISCONNECTED;
    StopLoading();
    m_isBusy = false;
    m_hasQuit = true;
    RaiseQuit();
    EndEngine();
    m_document.Release();
    return S_OK;
}

// The event outlives the caller's reference, which is often released right behind a call of Quit.
void BrowserObject::RaiseQuit() {
    if (m_events->HasSinks())
        m_link->Post([keep = CComPtr<BrowserObject>(this)](BrowserObject& self) {
            RaiseOnQuit(self.Events());
        });
}

void BrowserObject::NoteGone() {
    if (m_hasQuit) return;
    m_isBusy = false;
    m_hasQuit = true;
    m_document.Release();
    RaiseQuit();
}

HRESULT BrowserObject::get_ReadyState(READYSTATE* pState) {
    return Answer(IsGone(), pState, [this] { return m_readyState; });
}

HRESULT BrowserObject::get_Busy(VARIANT_BOOL* pBusy) {
    return Answer(IsGone(), pBusy, [this] { return VariantBool(m_isBusy); });
}

HRESULT BrowserObject::get_Document(IDispatch** ppDocument) {
    const HRESULT hr =
        Answer(IsGone(), ppDocument, [this] { return CComPtr<IDispatch>(m_document).Detach(); });
    return SUCCEEDED(hr) && !m_document ? E_FAIL : hr;
}

HRESULT BrowserObject::get_Offline(VARIANT_BOOL* pOffline) {
    return Answer(IsGone(), pOffline, [this] { return VariantBool(m_isOffline); });
}

HRESULT BrowserObject::put_Offline(VARIANT_BOOL offline) {
    if (IsGone()) return RPC_E_DISCONNECTED;
    m_isOffline = offline != VARIANT_FALSE;
    SetEngineOffline(m_isOffline);
    return S_OK;
}

HRESULT BrowserObject::get_LocationURL(BSTR* pUrl) {
    return Answer(IsGone(), pUrl, [this] { return CComBSTR(m_location).Detach(); });
}

HRESULT BrowserObject::get_Visible(VARIANT_BOOL* pVisible) {
    return Answer(IsGone(), pVisible, [this] { return VariantBool(m_isVisible); });
}

HRESULT BrowserObject::put_Visible(VARIANT_BOOL visible) {
    if (IsGone()) return RPC_E_DISCONNECTED;
    const bool isVisible = visible != VARIANT_FALSE;
    if (isVisible == m_isVisible) return S_OK;
    ShowWindow(isVisible);
    NoteVisible(isVisible);
    return S_OK;
}

void BrowserObject::NoteVisible(bool isVisible) {
    if (isVisible == m_isVisible) return;
    m_isVisible = isVisible;
    if (m_events->HasSinks())
        m_link->Post(
            [isVisible](BrowserObject& self) { RaiseOnVisible(self.Events(), isVisible); });
}

HRESULT BrowserObject::get_HWND(LONG_PTR* pWindow) {
    return Answer(IsGone(), pWindow, [this] { return reinterpret_cast<LONG_PTR>(Window()); });
}

HRESULT BrowserObject::get_Application(IDispatch** ppApplication) {
    return Answer(IsGone(), ppApplication,
                  [this] { return CComPtr<IDispatch>(Dispatch()).Detach(); });
}

HRESULT BrowserObject::get_StatusText(BSTR* pText) {
    return Answer(IsGone(), pText, [this] { return CComBSTR(m_statusText).Detach(); });
}

HRESULT BrowserObject::get_Status(LONG* pStatus) {
    return Answer(IsGone(), pStatus, [this] { return static_cast<LONG>(m_replyStatus); });
}

HRESULT BrowserObject::FindConnectionPoint(REFIID iid, IConnectionPoint** ppPoint) {
    if (!ppPoint) return E_POINTER;
    *ppPoint = nullptr;
    if (iid != DIID_DWebBrowserEvents2) return CONNECT_E_NOCONNECTION;
    *ppPoint = CComPtr<IConnectionPoint>(m_events).Detach();
    return S_OK;
}

HRESULT BrowserObject::SetHostWindow(HWND hWnd) {
    m_hostWindow = hWnd;
    return S_OK;
}

} // namespace platform
