// The back-end that runs the browser control in the caller's process, in a top-level window of its
// own that stays hidden until a page is to be shown.
#pragma once

#include "backends/ZrHbHttpGet.h"

class CZrHbWebBrowserHttpGet final : public CZrHbHttpGet {
public:
    explicit CZrHbWebBrowserHttpGet(DWORD nConnectVersion) : m_connectVersion(nConnectVersion) {}

    DWORD Connect(HWND hWndParent, CString& strErr) override;
    DWORD Open(const CString& strUrl, CString& strErr, const void* pPostData, DWORD nPostLen,
               const char* pszHeaders, BOOL bKeepPageOpen) override;
    DWORD Read(CByteBuffer& page, CString& strErr, DWORD& nLength, CString& strUrl) override;
    // Leaves the page as it was when there is no source to read.
    DWORD Read(CString& page, CString& strErr, DWORD& nLength, CString& strUrl) override;
    void Close() override;
    void Disconnect() override;
    void PrepareOpenInNewWindow() override { m_isNewWindow = true; }
    void PutVisible(BOOL bVisible) override;
    void KeepThisFrameOpen() override {} // this browser lives in its container, not on its own
    IWebBrowser2* Get_IWebBrowser2_ptr(CString& strErr) override;

private:
    HWND CreateHostWindow();
    void TitleHostWindow(const CString& strUrl);
    void WaitWhileBusy(DWORD limit);

    CComPtr<IWebBrowser2> m_browser;
    HWND m_hostWindow = nullptr;
    const DWORD m_connectVersion;
    bool m_isNewWindow = false; // once set, every Open waits for its page and shows the window
};
