#include "support/ScriptedBrowser.h"

#include <algorithm>

namespace test_support {

namespace {

class ScriptedElement final : public ComObject<IHTMLElement> {
public:
    explicit ScriptedElement(const std::string* outerHtml) : m_outerHtml(outerHtml) {}
    HRESULT get_outerHTML(BSTR* pHtml) override {
        if (!m_outerHtml) return E_FAIL;
        *pHtml = CComBSTR(*m_outerHtml).Detach();
        return S_OK;
    }
    HRESULT Invoke(DISPID, REFIID, LCID, WORD, DISPPARAMS*, VARIANT*, EXCEPINFO*, UINT*) override {
        return DISP_E_MEMBERNOTFOUND;
    }

private:
    const std::string* m_outerHtml;
};

std::string AnsiText(const VARIANT& variant) {
    CComBSTR text;
    *&text = SysAllocStringLen(variant.bstrVal, SysStringLen(variant.bstrVal));
    return std::string(text.ToAnsi().View());
}

std::string Bytes(SAFEARRAY* array) {
    void* data = nullptr;
    LONG last = -1;
    SafeArrayGetUBound(array, 1, &last);
    SafeArrayAccessData(array, &data);
    std::string bytes(static_cast<const char*>(data), static_cast<std::size_t>(last + 1));
    SafeArrayUnaccessData(array);
    return bytes;
}

} // namespace

HRESULT ScriptedDocument::QueryInterface(REFIID iid, void** ppObject) {
    const bool isRefused = (iid == IPersistStreamInit::Iid && Fails("IPersistStreamInit")) ||
                           (iid == IHTMLDocument2::Iid && Fails("IHTMLDocument2"));
    if (!isRefused) return ComObject::QueryInterface(iid, ppObject);
    *ppObject = nullptr;
    return E_NOINTERFACE;
}

HRESULT ScriptedDocument::Save(IStream* pStream, BOOL) {
    if (Fails("Save")) return E_FAIL;
    ULONG written = 0;
    return pStream->Write(source.data(), static_cast<ULONG>(source.size()), &written);
}

HRESULT ScriptedDocument::get_body(IHTMLElement** ppBody) {
    if (Fails("get_body")) return E_FAIL;
    const std::string* html = Fails("get_outerHTML") ? nullptr : &outerHtml;
    *ppBody = MakeObject<ScriptedElement>(html).Detach();
    return S_OK;
}

void ScriptedBrowser::SetSource(const std::string& source) {
    const auto scripted = MakeObject<ScriptedDocument>();
    scripted->source = source;
    document = CComPtr<IDispatch>(scripted);
}

int ScriptedBrowser::Count(const std::string& call) const {
    return static_cast<int>(std::count(calls.begin(), calls.end(), call));
}

HRESULT ScriptedBrowser::Called(const std::string& call) {
    calls.push_back(call);
    if (const auto found = during.find(call); found != during.end())
        std::function<void()>(found->second)();
    return Fails(call) ? E_FAIL : S_OK;
}

HRESULT ScriptedBrowser::Navigate2(VARIANT* url, VARIANT* flags, VARIANT*, VARIANT* post,
                                   VARIANT* headers) {
    Navigation navigation{AnsiText(*url), flags->lVal};
    if (post->vt != VT_EMPTY) navigation.postData = Bytes(post->parray);
    if (headers->vt != VT_EMPTY) navigation.headers = AnsiText(*headers);
    navigations.push_back(navigation);
    return Called("Navigate2");
}

HRESULT ScriptedBrowser::get_ReadyState(READYSTATE* pState) {
    *pState = moments.front().readyState;
    return Called("get_ReadyState");
}

HRESULT ScriptedBrowser::get_Busy(VARIANT_BOOL* pBusy) {
    *pBusy = moments.front().isBusy ? VARIANT_TRUE : VARIANT_FALSE;
    if (moments.size() > 1) moments.pop_front();
    return Called("get_Busy");
}

HRESULT ScriptedBrowser::get_Document(IDispatch** ppDocument) {
    if (!document) return E_FAIL;
    const HRESULT hr = Called("get_Document");
    if (SUCCEEDED(hr)) *ppDocument = CComPtr<IDispatch>(document).Detach();
    return hr;
}

HRESULT ScriptedBrowser::get_Offline(VARIANT_BOOL* pOffline) {
    *pOffline = isOffline ? VARIANT_TRUE : VARIANT_FALSE;
    return Called("get_Offline");
}

HRESULT ScriptedBrowser::get_LocationURL(BSTR* pUrl) {
    if (Fails("get_LocationURL")) return E_FAIL;
    *pUrl = CComBSTR(location).Detach();
    return S_OK;
}

HRESULT ScriptedBrowser::get_HWND(LONG_PTR* pWindow) {
    *pWindow = window;
    return Called("get_HWND");
}

HRESULT ScriptedBrowser::get_Application(IDispatch** ppApplication) {
    if (Fails("get_Application")) return E_FAIL;
    *ppApplication = CComPtr<IDispatch>(Dispatch()).Detach();
    return S_OK;
}

HRESULT ScriptedBrowser::FindConnectionPoint(REFIID iid, IConnectionPoint** ppPoint) {
    if (iid != DIID_DWebBrowserEvents2 || Fails("Events")) return CONNECT_E_NOCONNECTION;
    *ppPoint = CComPtr<IConnectionPoint>(m_events).Detach();
    return S_OK;
}

void* ScriptedBrowser::FindOther(REFIID iid) {
    return iid == IDispatch::Iid ? static_cast<IDispatch*>(this) : nullptr;
}

ScriptedControl::ScriptedControl()
    : m_browser(MakeObject<ScriptedBrowser>()),
      m_registration(CLSID_WebBrowser, [browser = m_browser](REFIID iid, void** ppObject) {
          return browser->QueryInterface(iid, ppObject);
      }) {}

ScriptedApplication::ScriptedApplication(std::size_t count)
    : m_registration(CLSID_InternetExplorer, [this](REFIID iid, void** ppObject) {
          if (m_created == m_browsers.size()) return E_FAIL;
          return m_browsers[m_created++]->QueryInterface(iid, ppObject);
      }) {
    while (m_browsers.size() < count)
        m_browsers.push_back(MakeObject<ScriptedBrowser>());
}

ULONG ScriptedApplication::References(std::size_t index) const {
    m_browsers[index]->AddRef();
    return m_browsers[index]->Release() - 1;
}

} // namespace test_support
