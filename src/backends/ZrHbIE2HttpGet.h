// The back-end that drives a browser application in a process of its own. Beyond the contract it
// notices a browser that has gone away, brings a browser that shows a dialog to the front, opens
// pages in a new window of the user's, and collects every document of a page.
#pragma once

#include <memory>

#include "backends/ReadinessRule.h"
#include "backends/TrafficHooks.h"
#include "backends/ZrHbHttpGet.h"
#include "backends/ZrHbIE4Events.h"

class NavigationRequest;

// `Open` in a new window and `Disconnect` serve the thread's messages while they wait. What is
// handled then may disconnect; the caller keeps the back-end itself alive.
class CZrHbIE2HttpGet final : public CZrHbHttpGet {
public:
    // Requests and results of the live document pass by `traffic`, which outlives the back-end.
    CZrHbIE2HttpGet(DWORD nConnectVersion, TrafficHooks& traffic)
        : m_connectVersion(nConnectVersion), m_traffic(traffic) {}
    ~CZrHbIE2HttpGet() override;

    // The application starts invisible.
    DWORD Connect(HWND hWndParent, CString& strErr) override;
    // With bKeepPageOpen every document that completes is collected. In a new window: returns when
    // that has loaded, or its browser has gone; without a limit otherwise.
    DWORD Open(const CString& strUrl, CString& strErr, const void* pPostData, DWORD nPostLen,
               const char* pszHeaders, BOOL bKeepPageOpen) override;
    // The live document, also while pages are collected.
    DWORD Read(CByteBuffer& page, CString& strErr, DWORD& nLength, CString& strUrl) override;
    // The live document, or the next collected page; 11 when all have been handed out and no
    // navigation is under way.
    DWORD Read(CString& page, CString& strErr, DWORD& nLength, CString& strUrl) override;
    // Ends collecting as well.
    void Close() override;
    // Quits the application unless it is to stay open. Waits while it is busy under a dialog.
    void Disconnect() override;
    void PrepareOpenInNewWindow() override { m_bNewWindow = TRUE; }
    void PutVisible(BOOL bVisible) override;
    void KeepThisFrameOpen() override { m_bKeepOpen = TRUE; }
    IWebBrowser2* Get_IWebBrowser2_ptr(CString& strErr) override;

private:
    bool IsAlive();
    DWORD NavigateHere(NavigationRequest& request, CString& strErr);
    DWORD NavigateInNewWindow(NavigationRequest& request, CString& strErr);
    void WaitForNewWindow(const CZrHbIE4Events& sink, const BOOL& isReached);
    void WaitForDialog();
    DWORD CheckReadable(CString& strErr);
    DWORD AskState(IWebBrowser2& browser, BrowserState& state, CString& strErr, DWORD& nLength);

    // Of collecting pages.
    bool StartCollecting();
    void EndCollecting();
    DWORD ReadCollected(CString& page, CString& strErr, DWORD& nLength, CString& strUrl);
    static void CountNavigation(void* pContext);
    static void CollectPage(void* pContext, const CString& page, const CString& strUrl);

    CComPtr<IWebBrowser2> m_browser;
    BOOL m_bKeepOpen = FALSE;
    BOOL m_bNavigated = FALSE; // since the first successful Open
    BOOL m_bNewWindow = FALSE; // for the next Open
    BOOL m_bOpenedInNewWindow = FALSE;
    BOOL m_bBringToFrontOnce = FALSE;
    const DWORD m_connectVersion;
    BOOL m_bKeepPageOpen = FALSE;
    std::unique_ptr<CZrHbIE4Events> m_collectSink;
    LONG m_nextPage = 0;
    LONG m_pendingNavigations = 0;
    CStringArray m_collectedPages;
    CStringArray m_collectedUrls;
    BOOL m_bNewWindowNavigated = FALSE;
    BOOL m_bNewWindowLoaded = FALSE;
    TrafficHooks& m_traffic;
};
