// The out-of-process back-end: connecting, opening, closing.

#include "backends/ZrHbIE2HttpGet.h"

#include <ZrHbResultCodes.h>
#include <ZrHbUHttpGet.h>
#include <platform/Messages.h>

#include "backends/BrowserSurfacing.h"
#include "backends/NavigationRequest.h"
#include "siblings/ZrAbErrorFile.h"

namespace {

constexpr DWORD kPollMs = 100;

DWORD CannotConnect(CString& strErr, const char* pszCall) {
    strErr.Format("Internal Error: Cannot Connect to IE(Version 2): %s failed.", pszCall);
    return ZRHB_CONNECT_FAILED;
}

DWORD CannotNavigate(CString& strErr) {
    strErr = BackendTexts::kCannotNavigate;
    return ZRHB_CANNOT_NAVIGATE;
}

// As a callback: its context is the flag to set.
void SetFlag(void* pContext) {
    *static_cast<BOOL*>(pContext) = TRUE;
}

bool IsBusy(IWebBrowser2& browser) {
    VARIANT_BOOL busy = VARIANT_FALSE;
    return SUCCEEDED(browser.get_Busy(&busy)) && busy != VARIANT_FALSE;
}

// Ends early when there is something new to see.
void ServeMessagesAndPause() {
    CZrHbUHttpGet::HandleWinMessageQueue();
    WaitForApartmentNews(kPollMs);
}

} // namespace

CZrHbIE2HttpGet::~CZrHbIE2HttpGet() {
    CZrHbIE2HttpGet::Close();
    CZrHbIE2HttpGet::Disconnect();
}

DWORD CZrHbIE2HttpGet::Connect(HWND, CString& strErr) {
    CZrAbErrorFile::Log("CZrHbWebBrowserHttpGet::Connect() : Instantiate out process WebBrowser "
                        "(CSLID_InternetExplorer)",
                        eAppGroup_2, "ZrHbIE2HttpGet", 71, __DATE__, __TIME__,
                        CZrAbErrorFile::eErrorLevel_Trace, CZrAbErrorFile::eFunctionType_Http);
    Disconnect();
    if (FAILED(OleInitialize(nullptr))) return CannotConnect(strErr, "OleInitialize");
    CComPtr<IWebBrowser2> browser;
    if (FAILED(CoCreateInstance(CLSID_InternetExplorer, nullptr, CLSCTX_LOCAL_SERVER,
                                IID_IWebBrowser2, reinterpret_cast<void**>(&browser))))
        return CannotConnect(strErr, "CoCreateInstance");
    m_browser = std::move(browser);
    strErr.Empty();
    return ZRHB_OK;
}

// A browser that has gone away is let go of.
bool CZrHbIE2HttpGet::IsAlive() {
    if (!m_browser) return false;
    if (BrowserSurfacing::IsAlive(*m_browser)) return true;
    EndCollecting();
    m_browser.Release();
    return false;
}

DWORD CZrHbIE2HttpGet::Open(const CString& strUrl, CString& strErr, const void* pPostData,
                            DWORD nPostLen, const char* pszHeaders, BOOL bKeepPageOpen) {
    CString url = strUrl;
    m_bKeepPageOpen = bKeepPageOpen;
    m_traffic.PrepareRequest(url, pPostData, nPostLen, pszHeaders);
    if (!m_browser) return OpenNotConnected(strErr);
    if (!IsAlive()) {
        strErr = BackendTexts::kOpenConnectionLost;
        return ZRHB_BROWSER_GONE;
    }
    EndCollecting(); // of an Open that nobody has closed
    m_bBringToFrontOnce = TRUE;
    m_bOpenedInNewWindow = std::exchange(m_bNewWindow, FALSE);
    NavigationRequest request(url, pPostData, nPostLen, pszHeaders, m_connectVersion,
                              m_bOpenedInNewWindow ? kNewWindowNavigationFlags : kNavigationFlags);
    const DWORD result =
        m_bOpenedInNewWindow ? NavigateInNewWindow(request, strErr) : NavigateHere(request, strErr);
    if (result == ZRHB_OK) m_bNavigated = TRUE;
    return result;
}

DWORD CZrHbIE2HttpGet::NavigateHere(NavigationRequest& request, CString& strErr) {
    const CComPtr<IWebBrowser2> browser = m_browser;
    const bool isFollowed = !m_bKeepPageOpen || StartCollecting();
    if (!isFollowed || FAILED(request.NavigateWith(*browser))) {
        EndCollecting();
        return CannotNavigate(strErr);
    }
    BrowserSurfacing::SurfaceDialog(*browser, m_bBringToFrontOnce);
    return ZRHB_OK;
}

DWORD CZrHbIE2HttpGet::NavigateInNewWindow(NavigationRequest& request, CString& strErr) {
    const CComPtr<IWebBrowser2> browser = m_browser;
    CZrHbIE4Events sink(browser);
    m_bNewWindowNavigated = FALSE;
    m_bNewWindowLoaded = FALSE;
    sink.SetOnNewWindowNavigated({&SetFlag, &m_bNewWindowNavigated});
    sink.SetOnNewWindowLoaded({&SetFlag, &m_bNewWindowLoaded});
    // Without its events nothing would ever end the wait.
    if (!sink.Advise(FALSE) || FAILED(request.NavigateWith(*browser)))
        return CannotNavigate(strErr);
    WaitForNewWindow(sink, m_bNewWindowNavigated);
    WaitForNewWindow(sink, m_bNewWindowLoaded);
    if (m_browser.Get() != browser.Get()) return OpenNotConnected(strErr);
    BrowserSurfacing::BringToFront(sink.NewBrowserWindow());
    return ZRHB_OK;
}

// A message that is handled meanwhile may disconnect.
void CZrHbIE2HttpGet::WaitForNewWindow(const CZrHbIE4Events& sink, const BOOL& isReached) {
    const CComPtr<IWebBrowser2> browser = m_browser;
    while (!isReached && browser && m_browser.Get() == browser.Get() && sink.IsNewWindowPossible())
        ServeMessagesAndPause();
}

void CZrHbIE2HttpGet::Close() {
    if (!m_browser || !m_bNavigated) return;
    const CComPtr<IWebBrowser2> browser = m_browser;
    browser->Stop();
    EndCollecting();
}

void CZrHbIE2HttpGet::Disconnect() {
    Close();
    if (!IsAlive()) return;
    WaitForDialog();
    const CComPtr<IWebBrowser2> browser = std::move(m_browser);
    if (browser && !m_bKeepOpen) browser->Quit();
}

// Until the user has answered the browser's dialog. A message that is handled meanwhile may
// disconnect.
void CZrHbIE2HttpGet::WaitForDialog() {
    const CComPtr<IWebBrowser2> browser = m_browser;
    while (m_browser.Get() == browser.Get() && IsBusy(*browser) &&
           BrowserSurfacing::SurfaceDialog(*browser, m_bBringToFrontOnce)) {
        ServeMessagesAndPause();
        CZrHbUHttpGet::HandleWinMessageQueue();
    }
}

void CZrHbIE2HttpGet::PutVisible(BOOL bVisible) {
    if (m_browser) m_browser->put_Visible(bVisible ? VARIANT_TRUE : VARIANT_FALSE);
}

IWebBrowser2* CZrHbIE2HttpGet::Get_IWebBrowser2_ptr(CString& strErr) {
    strErr.Empty();
    if (!m_browser) strErr = BackendTexts::kInterfaceNotConnected;
    return m_browser.Get();
}
