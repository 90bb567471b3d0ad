// The back-end of a browser that the user never sees: the control in a tiny window under the
// client's own.
#pragma once

#include <memory>

#include "backends/ReadinessRule.h"
#include "backends/ZrHbHttpGet.h"
#include "backends/ZrHbWebBrowser2.h"

// A control that fails a call makes Connect, Open or Read throw (CWnd::InvokeHelper); the
// back-end stays usable and nothing is lost.
class CZrHbIEHttpGet final : public CZrHbHttpGet {
public:
    explicit CZrHbIEHttpGet(DWORD nConnectVersion) : m_connectVersion(nConnectVersion) {}
    ~CZrHbIEHttpGet() override;

    // hWndParent must be a window.
    DWORD Connect(HWND hWndParent, CString& strErr) override;
    DWORD Open(const CString& strUrl, CString& strErr, const void* pPostData, DWORD nPostLen,
               const char* pszHeaders, BOOL bKeepPageOpen) override;
    // 22 as well for a page that has stopped loading without being complete. A complete page is
    // stopped once it is read, unless it was opened with bKeepPageOpen.
    DWORD Read(CByteBuffer& page, CString& strErr, DWORD& nLength, CString& strUrl) override;
    DWORD Read(CString& page, CString& strErr, DWORD& nLength, CString& strUrl) override;
    void Close() override {}
    // Destroys the control and its window.
    void Disconnect() override;
    void PrepareOpenInNewWindow() override { m_isNewWindow = true; }
    // These make no sense for a browser that nobody sees: the user is told, nothing is done.
    void PutVisible(BOOL bVisible) override;
    void KeepThisFrameOpen() override;
    // Always null.
    IWebBrowser2* Get_IWebBrowser2_ptr(CString& strErr) override;

private:
    template <class TPage>
    DWORD ReadPage(TPage& page, CString& strErr, DWORD& nLength, CString& strUrl);
    bool IsStalled(LiveBrowser& browser, BrowserState& state, CString& strErr);
    void NotePageRead();

    bool m_hasBeenBusy = false; // since Open, as Read has seen it
    std::unique_ptr<CZrHbWebBrowser2> m_control;
    bool m_isNewWindow = false; // for the next Open
    bool m_isOpenedInNewWindow = false;
    const DWORD m_connectVersion;
    BOOL m_keepPageOpen = FALSE;
};
