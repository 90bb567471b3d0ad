#include "backends/ZrHbWebBrowserHttpGet.h"

#include <ZrHbErrorHandling.h>
#include <ZrHbResultCodes.h>
#include <platform/Clock.h>
#include <platform/Url.h>
#include <platform/Window.h>

#include "backends/NavigationRequest.h"
#include "backends/ReadinessRule.h"
#include "siblings/ZrAbErrorFile.h"
#include "siblings/ZrCbSystem.h"

namespace {

constexpr UINT kHostWindowTitleId = 108;
constexpr DWORD kHostWindowExStyle = 0x00040000; // shown in the task bar
constexpr DWORD kHostWindowStyle = 0x004F010D;   // dialog frame, system menu, sizing, not visible
constexpr DWORD kBusyPollMs = 100;
// Bounds for a browser that never gets done: the page then goes on loading, or is dropped.
constexpr DWORD kShowPageLimitMs = 60'000;
constexpr DWORD kDisconnectLimitMs = 10'000;

DWORD ConnectFailed(CString& strErr, const char* pszCall) {
    strErr.Format("Internal Error: Cannot Connect to %s failed", pszCall);
    return ZRHB_CONNECT_FAILED;
}

} // namespace

DWORD CZrHbWebBrowserHttpGet::Connect(HWND, CString& strErr) {
    CZrAbErrorFile::Log("CZrHbWebBrowserHttpGet::Connect() : Instantiate in process WebBrowser "
                        "(CLSID_WebBrowser",
                        eAppGroup_2, "ZrHbWebBrowserHttpGet", 50, __DATE__, __TIME__,
                        CZrAbErrorFile::eErrorLevel_Trace, CZrAbErrorFile::eFunctionType_Http);
    strErr.Empty();
    Disconnect();
    if (FAILED(OleInitialize(nullptr)))
        return ConnectFailed(strErr, "In-Process WebBrowser control: OleInitialize");

    // A control that could not be created shows itself when it is attached.
    CComPtr<IWebBrowser2> browser;
    CoCreateInstance(CLSID_WebBrowser, nullptr,
                     CLSCTX_INPROC_SERVER | CLSCTX_INPROC_HANDLER | CLSCTX_LOCAL_SERVER,
                     IID_IWebBrowser2, reinterpret_cast<void**>(&browser));
    m_hostWindow = CreateHostWindow();
    if (!m_hostWindow) return ConnectFailed(strErr, "in-process WebBrowser control: CreateWindow");
    CComPtr<IUnknown> container;
    if (FAILED(AtlAxAttachControl(browser.Get(), m_hostWindow, &container)))
        return ConnectFailed(strErr, "in-process WebBrowser control: AtlAxAttachControl");
    m_browser = std::move(browser);
    return ZRHB_OK;
}

HWND CZrHbWebBrowserHttpGet::CreateHostWindow() {
    const CString title = CZrHbErrorHandling::LoadStringAndGet(kHostWindowTitleId);
    return CreateWindowExA(kHostWindowExStyle, "LISTBOX", title, kHostWindowStyle, 100, 100, 800,
                           600, GetDesktopWindow(), nullptr, nullptr, nullptr);
}

DWORD CZrHbWebBrowserHttpGet::Open(const CString& strUrl, CString& strErr, const void* pPostData,
                                   DWORD nPostLen, const char* pszHeaders, BOOL) {
    if (!m_browser) return OpenNotConnected(strErr);
    NavigationRequest request(strUrl, pPostData, nPostLen, pszHeaders, m_connectVersion,
                              kNavigationFlags);
    if (FAILED(request.NavigateWith(*m_browser))) {
        strErr = BackendTexts::kCannotNavigate;
        return ZRHB_CANNOT_NAVIGATE;
    }
    TitleHostWindow(strUrl);
    if (m_isNewWindow) {
        WaitWhileBusy(kShowPageLimitMs);
        if (!m_browser) return OpenNotConnected(strErr);
        ShowWindow(m_hostWindow, SW_SHOW);
    }
    return ZRHB_OK;
}

void CZrHbWebBrowserHttpGet::TitleHostWindow(const CString& strUrl) {
    DWORD service = 0;
    CString server;
    CString object;
    WORD port = 0;
    AfxParseURL(strUrl, service, server, object, port);
    if (!server.IsEmpty()) server = "https://" + server;
    SetWindowTextA(m_hostWindow, server);
}

void CZrHbWebBrowserHttpGet::WaitWhileBusy(DWORD limit) {
    // A message that is handled meanwhile may disconnect.
    const CComPtr<IWebBrowser2> browser = m_browser;
    const DWORD start = GetTickCount();
    VARIANT_BOOL busy = VARIANT_FALSE;
    do {
        CZrCbSystem::WaitTimeout(kBusyPollMs, 1);
        busy = VARIANT_FALSE;
        browser->get_Busy(&busy);
    } while (busy != VARIANT_FALSE && GetTickCount() - start < limit);
}

DWORD CZrHbWebBrowserHttpGet::Read(CByteBuffer& page, CString& strErr, DWORD& nLength,
                                   CString& strUrl) {
    strErr.Empty();
    nLength = 0;
    if (!m_browser) {
        strErr = BackendTexts::kReadNotConnected;
        return ZRHB_NO_OPEN_PAGE;
    }
    LiveWebBrowser2 browser(*m_browser);
    return ReadinessRule::ReadLivePage(browser, page, strErr, nLength, strUrl);
}

DWORD CZrHbWebBrowserHttpGet::Read(CString& page, CString& strErr, DWORD& nLength,
                                   CString& strUrl) {
    CByteBuffer bytes(1024, 256);
    bytes.Add(page.GetString());
    const DWORD result = Read(bytes, strErr, nLength, strUrl);
    page = bytes.GetString();
    return result;
}

void CZrHbWebBrowserHttpGet::Close() {
    if (m_browser) m_browser->Stop();
}

void CZrHbWebBrowserHttpGet::Disconnect() {
    Close();
    if (!m_browser) return;
    WaitWhileBusy(kDisconnectLimitMs);
    m_browser->Quit();
    m_browser.Release();
}

void CZrHbWebBrowserHttpGet::PutVisible(BOOL bVisible) {
    if (!m_browser) return;
    m_browser->put_Visible(bVisible ? VARIANT_TRUE : VARIANT_FALSE);
    if (bVisible) ShowWindow(m_hostWindow, SW_SHOW);
}

IWebBrowser2* CZrHbWebBrowserHttpGet::Get_IWebBrowser2_ptr(CString& strErr) {
    strErr.Empty();
    if (!m_browser) strErr = BackendTexts::kInterfaceNotConnected;
    return m_browser.Get();
}
