#include "backends/ZrHbIE4Events.h"

#include <array>
#include <type_traits>
#include <utility>

#include <ZrHbHtmlTools.h>
#include <ZrHbResultCodes.h>
#include <platform/CodePage.h>

namespace {

template <class... TArguments>
void Fire(const SinkCallback<TArguments...>& callback,
          std::type_identity_t<TArguments>... arguments) {
    const auto copy = callback; // the callback may destroy its sink
    if (copy.pFunction) copy.pFunction(copy.pContext, arguments...);
}

void FireOnce(SinkNotice& callback) {
    Fire(std::exchange(callback, {}));
}

CComPtr<IWebBrowser2> BrowserOf(IDispatch* pDisp) {
    CComPtr<IWebBrowser2> browser;
    if (pDisp) CComPtr<IDispatch>(pDisp).QueryInterface(&browser);
    return browser;
}

// The source of a completed document; empty when it cannot be had.
CString SourceOf(IDispatch* pDisp) {
    const CComPtr<IWebBrowser2> browser = BrowserOf(pDisp);
    CComPtr<IDispatch> document;
    if (!browser || FAILED(browser->get_Document(&document)) || !document) return {};
    CString page;
    CString strErr;
    DWORD nLength = 0;
    DWORD result = ZRHB_READ_FAILED;
    CZrHbHtmlTools::GetSourceFromDocumentDispatchPtr(document.Get(), result, page, strErr, nLength,
                                                     READYSTATE_UNINITIALIZED, TRUE);
    return result == ZRHB_OK ? page : CString();
}

CString TextOf(const VARIANT* pText) {
    if (!pText || pText->vt != VT_BSTR || !pText->bstrVal) return {};
    return CString(platform::AnsiFromWide({pText->bstrVal, SysStringLen(pText->bstrVal)}));
}

HWND HandleOf(IWebBrowser2& browser) {
    LONG_PTR window = 0;
    return SUCCEEDED(browser.get_HWND(&window)) ? reinterpret_cast<HWND>(window) : nullptr;
}

} // namespace

CZrHbIE4Events::CZrHbIE4Events(CComPtr<IWebBrowser2> browser) : m_browser(std::move(browser)) {
    EnableAutomation();
}

CZrHbIE4Events::~CZrHbIE4Events() {
    ExternalDisconnect();
    ReleaseTree(false);
}

std::span<const CCmdTarget::DispatchEntry> CZrHbIE4Events::GetDispatchMap() const {
    using Sink = CZrHbIE4Events;
    static constexpr std::array kMap{
        DispFunctionId<&Sink::OnBeforeNavigate2>(DISPID_BEFORENAVIGATE2),
        DispFunctionId<&Sink::OnDocumentComplete>(DISPID_DOCUMENTCOMPLETE),
        DispFunctionId<&Sink::OnDownloadBegin>(DISPID_DOWNLOADBEGIN),
        DispFunctionId<&Sink::OnDownloadComplete>(DISPID_DOWNLOADCOMPLETE),
        DispFunctionId<&Sink::OnNavigateComplete2>(DISPID_NAVIGATECOMPLETE2),
        DispFunctionId<&Sink::OnNewWindow2>(DISPID_NEWWINDOW2),
        DispFunctionId<&Sink::OnVisible>(DISPID_ONVISIBLE),
        DispFunctionId<&Sink::OnQuit>(DISPID_ONQUIT),
    };
    return kMap;
}

BOOL CZrHbIE4Events::GetDispatchIID(IID* pIid) const {
    *pIid = DIID_DWebBrowserEvents2;
    return TRUE;
}

bool CZrHbIE4Events::Advise(BOOL bKeepInvisible) {
    m_bKeepInvisible = bKeepInvisible;
    return AfxConnectionAdvise(m_browser.Get(), DIID_DWebBrowserEvents2, GetIDispatch(FALSE), TRUE,
                               &m_dwCookie) != FALSE;
}

// Each child is taken off the list before it goes: what it lets go of may raise events.
void CZrHbIE4Events::ReleaseTree(bool isBrowserReleased) {
    while (const auto child = std::move(m_firstChild)) {
        m_firstChild = std::move(child->m_nextSibling);
        child->ReleaseTree(true);
    }
    if (const DWORD cookie = std::exchange(m_dwCookie, 0u))
        AfxConnectionUnadvise(m_browser.Get(), DIID_DWebBrowserEvents2, GetIDispatch(FALSE), TRUE,
                              cookie);
    if (isBrowserReleased) ReleaseBrowser();
}

// A window that nobody may see is one that nobody could close.
void CZrHbIE4Events::ReleaseBrowser() {
    if (m_bKeepInvisible && m_browser) m_browser->Quit();
    m_browser.Release();
}

bool CZrHbIE4Events::IsNewWindowPossible() const {
    const CComPtr<IWebBrowser2> browser = m_firstChild ? m_firstChild->m_browser : m_browser;
    VARIANT_BOOL visible = VARIANT_FALSE;
    return browser && SUCCEEDED(browser->get_Visible(&visible));
}

bool CZrHbIE4Events::IsTopLevel(const IDispatch* pDisp) const {
    CComPtr<IDispatch> application;
    return m_browser && SUCCEEDED(m_browser->get_Application(&application)) &&
           application.Get() == pDisp;
}

void CZrHbIE4Events::OnBeforeNavigate2(IDispatch* pDisp, VARIANT*, VARIANT*, VARIANT*, VARIANT*,
                                       VARIANT*, VARIANT_BOOL*) {
    const std::weak_ptr life = m_life;
    Fire(m_onEachBeforeNavigate);
    if (!life.expired() && !IsTopLevel(pDisp)) FireOnce(m_onFrameNavigateOrTopComplete);
}

void CZrHbIE4Events::OnNavigateComplete2(IDispatch* pDisp, VARIANT*) {
    if (IsTopLevel(pDisp)) FireOnce(m_onTopNavigateComplete);
}

void CZrHbIE4Events::OnDocumentComplete(IDispatch* pDisp, VARIANT* URL) {
    const std::weak_ptr life = m_life;
    if (m_onEachDocumentComplete.pFunction) {
        const CString page = SourceOf(pDisp);
        if (!life.expired()) Fire(m_onEachDocumentComplete, page, TextOf(URL));
    }
    if (!life.expired() && IsTopLevel(pDisp)) FireOnce(m_onFrameNavigateOrTopComplete);
}

void CZrHbIE4Events::OnNewWindow2(IDispatch** ppDisp, VARIANT_BOOL*) {
    if (!ppDisp) return;
    const std::weak_ptr life = m_life;
    CComPtr<IWebBrowser2> browser;
    if (FAILED(CoCreateInstance(CLSID_InternetExplorer, nullptr, CLSCTX_LOCAL_SERVER,
                                IID_IWebBrowser2, reinterpret_cast<void**>(&browser))))
        return;
    CComPtr<IDispatch> application;
    if (life.expired() || FAILED(browser->get_Application(&application))) {
        browser->Quit(); // nobody else knows of it
        return;
    }
    CComPtr<IDispatch> former;
    former.Attach(std::exchange(*ppDisp, application.Detach()));
    AdoptNewBrowser(std::move(browser));
}

void CZrHbIE4Events::AdoptNewBrowser(CComPtr<IWebBrowser2> browser) {
    m_hNewBrowserWindow = HandleOf(*browser);
    auto child = std::make_unique<CZrHbIE4Events>(std::move(browser));
    if (!child->Advise(m_bKeepInvisible)) return;
    child->m_onTopNavigateComplete = std::exchange(m_onNewWindowNavigated, {});
    child->m_onFrameNavigateOrTopComplete = std::exchange(m_onNewWindowLoaded, {});
    AppendChild(std::move(child));
}

void CZrHbIE4Events::AppendChild(std::unique_ptr<CZrHbIE4Events> child) {
    std::unique_ptr<CZrHbIE4Events>* end = &m_firstChild;
    while (*end)
        end = &(*end)->m_nextSibling;
    *end = std::move(child);
}

void CZrHbIE4Events::OnVisible(BOOL bVisible) {
    const CComPtr<IWebBrowser2> browser = m_browser;
    if (bVisible && m_bKeepInvisible && browser) browser->put_Visible(VARIANT_FALSE);
}

void CZrHbIE4Events::OnQuit() {
    const std::weak_ptr life = m_life;
    for (SinkNotice* callback : {&m_onNewWindowLoaded, &m_onFrameNavigateOrTopComplete,
                                 &m_onNewWindowNavigated, &m_onTopNavigateComplete}) {
        FireOnce(*callback);
        if (life.expired()) return;
    }
}
