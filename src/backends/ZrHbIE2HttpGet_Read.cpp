// The out-of-process back-end: reading the live document, collecting pages.

#include "backends/ZrHbIE2HttpGet.h"

#include <ZrHbResultCodes.h>

#include "backends/BrowserSurfacing.h"

namespace {

// A page that has been read to its end needs nothing more from the network.
template <class TPage>
DWORD ReadSource(IWebBrowser2& browser, const BrowserState& state, TPage& page, CString& strErr,
                 DWORD& nLength, CString& strUrl) {
    LiveWebBrowser2 live(browser);
    const DWORD result = ReadinessRule::ReadDocument(live, state, page, strErr, nLength);
    if (result != ZRHB_OK) return result;
    browser.Stop();
    live.GetLocationUrl(strUrl);
    return ZRHB_OK;
}

} // namespace

DWORD CZrHbIE2HttpGet::CheckReadable(CString& strErr) {
    if (!m_browser) {
        strErr = BackendTexts::kReadNotConnected;
        return ZRHB_NO_OPEN_PAGE;
    }
    if (!IsAlive()) {
        strErr = BackendTexts::kReadConnectionLost;
        return ZRHB_BROWSER_GONE;
    }
    if (m_bOpenedInNewWindow) {
        strErr = BackendTexts::kReadInNewWindow;
        return ZRHB_READ_FAILED;
    }
    return ZRHB_OK;
}

DWORD CZrHbIE2HttpGet::AskState(IWebBrowser2& browser, BrowserState& state, CString& strErr,
                                DWORD& nLength) {
    LiveWebBrowser2 live(browser);
    const DWORD result = ReadinessRule::AskState(live, state, strErr);
    if (result != ZRHB_OK) return result;
    if (state.readyState <= READYSTATE_INTERACTIVE)
        BrowserSurfacing::SurfaceDialog(browser, m_bBringToFrontOnce);
    return ReadinessRule::CheckReady(state, strErr, nLength);
}

DWORD CZrHbIE2HttpGet::Read(CByteBuffer& page, CString& strErr, DWORD& nLength, CString& strUrl) {
    strErr.Empty();
    nLength = 0;
    DWORD result = CheckReadable(strErr);
    if (result != ZRHB_OK) return result;
    const CComPtr<IWebBrowser2> browser = m_browser;
    BrowserState state;
    result = AskState(*browser, state, strErr, nLength);
    if (result != ZRHB_OK) return result;
    return ReadSource(*browser, state, page, strErr, nLength, strUrl);
}

DWORD CZrHbIE2HttpGet::Read(CString& page, CString& strErr, DWORD& nLength, CString& strUrl) {
    strErr.Empty();
    nLength = 0;
    DWORD result = CheckReadable(strErr);
    if (result != ZRHB_OK) return result;
    if (m_bKeepPageOpen) return ReadCollected(page, strErr, nLength, strUrl);
    const CComPtr<IWebBrowser2> browser = m_browser;
    BrowserState state;
    result = AskState(*browser, state, strErr, nLength);
    if (result != ZRHB_OK) return result;
    result = ReadSource(*browser, state, page, strErr, nLength, strUrl);
    m_traffic.RecordResult(result, page, strErr);
    return result;
}

DWORD CZrHbIE2HttpGet::ReadCollected(CString& page, CString& strErr, DWORD& nLength,
                                     CString& strUrl) {
    if (m_nextPage < m_collectedPages.GetSize()) {
        strUrl = m_collectedUrls[m_nextPage];
        page = m_collectedPages[m_nextPage];
        ++m_nextPage;
        nLength = static_cast<DWORD>(page.GetLength());
        return ZRHB_OK;
    }
    page.Empty();
    const bool isLoading = m_pendingNavigations > 0;
    strErr = isLoading ? BackendTexts::kNotCompleted : BackendTexts::kLoadedIdle;
    return isLoading ? ZRHB_STILL_LOADING : ZRHB_LOADED_IDLE;
}

bool CZrHbIE2HttpGet::StartCollecting() {
    m_collectSink = std::make_unique<CZrHbIE4Events>(m_browser);
    m_pendingNavigations = 0;
    m_collectedPages.RemoveAll();
    m_collectedUrls.RemoveAll();
    m_nextPage = 0;
    m_collectSink->SetOnEachBeforeNavigate({&CountNavigation, this});
    m_collectSink->SetOnEachDocumentComplete({&CollectPage, this});
    return m_collectSink->Advise(TRUE);
}

// The sink is forgotten before it goes: what it lets go of may call back.
void CZrHbIE2HttpGet::EndCollecting() {
    if (const auto sink = std::move(m_collectSink)) sink->ReleaseTree(false);
    m_pendingNavigations = 0;
}

void CZrHbIE2HttpGet::CountNavigation(void* pContext) {
    ++static_cast<CZrHbIE2HttpGet*>(pContext)->m_pendingNavigations;
}

void CZrHbIE2HttpGet::CollectPage(void* pContext, const CString& page, const CString& strUrl) {
    auto& self = *static_cast<CZrHbIE2HttpGet*>(pContext);
    --self.m_pendingNavigations;
    self.m_collectedPages.Add(page);
    self.m_collectedUrls.Add(strUrl);
}
