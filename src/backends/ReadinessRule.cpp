#include "backends/ReadinessRule.h"

bool LiveWebBrowser2::GetReadyState(READYSTATE& state) {
    return SUCCEEDED(m_browser.get_ReadyState(&state));
}

bool LiveWebBrowser2::GetBusy(bool& isBusy) {
    VARIANT_BOOL busy = VARIANT_FALSE;
    if (FAILED(m_browser.get_Busy(&busy))) return false;
    isBusy = busy != VARIANT_FALSE;
    return true;
}

bool LiveWebBrowser2::GetDocument(CComPtr<IDispatch>& document) {
    return SUCCEEDED(m_browser.get_Document(&document)) && document;
}

bool LiveWebBrowser2::GetOffline(bool& isOffline) {
    VARIANT_BOOL offline = VARIANT_FALSE;
    if (FAILED(m_browser.get_Offline(&offline))) return false;
    isOffline = offline != VARIANT_FALSE;
    return true;
}

bool LiveWebBrowser2::GetLocationUrl(CString& strUrl) {
    CComBSTR location;
    if (FAILED(m_browser.get_LocationURL(&location))) return false;
    strUrl = location.ToAnsi();
    return true;
}

namespace ReadinessRule {

DWORD AskState(LiveBrowser& browser, BrowserState& state, CString& strErr) {
    if (!browser.GetReadyState(state.readyState)) {
        strErr = BackendTexts::kReadyStateFailed;
        return ZRHB_READ_FAILED;
    }
    if (!browser.GetBusy(state.isBusy)) {
        strErr = BackendTexts::kBusyFailed;
        return ZRHB_READ_FAILED;
    }
    return ZRHB_OK;
}

DWORD CheckReady(const BrowserState& state, CString& strErr, DWORD& nLength) {
    if (state.readyState >= READYSTATE_INTERACTIVE) return ZRHB_OK;
    nLength = 0;
    strErr = BackendTexts::kNotCompleted;
    return ZRHB_STILL_LOADING;
}

DWORD GetDocument(LiveBrowser& browser, CComPtr<IDispatch>& document, CString& strErr) {
    strErr = BackendTexts::kInternalError;
    if (browser.GetDocument(document)) return ZRHB_OK;
    bool isOffline = false;
    const bool isKnownOffline = browser.GetOffline(isOffline) && isOffline;
    strErr = isKnownOffline ? BackendTexts::kOffline : BackendTexts::kNoDocument;
    return ZRHB_READ_FAILED;
}

} // namespace ReadinessRule
