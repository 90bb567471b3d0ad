// When a page can be read, and how: the rule that every back-end's Read follows. A back-end with
// steps of its own calls the pieces, one without them ReadLivePage.
#pragma once

#include <ZrHbHtmlTools.h>
#include <ZrHbResultCodes.h>

#include "backends/BackendTexts.h"

// The browser as the rule sees it. All answers false when the call failed.
class LiveBrowser {
public:
    virtual bool GetReadyState(READYSTATE& state) = 0;
    virtual bool GetBusy(bool& isBusy) = 0;
    virtual bool GetDocument(CComPtr<IDispatch>& document) = 0;
    virtual bool GetOffline(bool& isOffline) = 0;
    virtual bool GetLocationUrl(CString& strUrl) = 0;

protected:
    ~LiveBrowser() = default;
};

class LiveWebBrowser2 final : public LiveBrowser {
public:
    explicit LiveWebBrowser2(IWebBrowser2& browser) : m_browser(browser) {}
    bool GetReadyState(READYSTATE& state) override;
    bool GetBusy(bool& isBusy) override;
    bool GetDocument(CComPtr<IDispatch>& document) override;
    bool GetOffline(bool& isOffline) override;
    bool GetLocationUrl(CString& strUrl) override;

private:
    IWebBrowser2& m_browser;
};

struct BrowserState {
    READYSTATE readyState = READYSTATE_UNINITIALIZED;
    bool isBusy = false;
};

namespace ReadinessRule {

// 0, or 22 when the browser does not answer.
DWORD AskState(LiveBrowser& browser, BrowserState& state, CString& strErr);
// 10 while there is nothing to read yet, else 0.
DWORD CheckReady(const BrowserState& state, CString& strErr, DWORD& nLength);
// 22 with the reason when there is no document, else 0.
DWORD GetDocument(LiveBrowser& browser, CComPtr<IDispatch>& document, CString& strErr);

// From a browser whose document is ready: its source. 0, 10 with the source so far, or 22.
template <class TPage>
DWORD ReadDocument(LiveBrowser& browser, const BrowserState& state, TPage& page, CString& strErr,
                   DWORD& nLength) {
    CComPtr<IDispatch> document;
    DWORD result = GetDocument(browser, document, strErr);
    if (result != ZRHB_OK) return result;
    CZrHbHtmlTools::GetSourceFromDocumentDispatchPtr(document.Get(), result, page, strErr, nLength,
                                                     state.readyState, 0);
    return result;
}

// The whole rule. strUrl changes only with result 0.
template <class TPage>
DWORD ReadLivePage(LiveBrowser& browser, TPage& page, CString& strErr, DWORD& nLength,
                   CString& strUrl) {
    BrowserState state;
    DWORD result = AskState(browser, state, strErr);
    if (result == ZRHB_OK) result = CheckReady(state, strErr, nLength);
    if (result == ZRHB_OK) result = ReadDocument(browser, state, page, strErr, nLength);
    if (result == ZRHB_OK) browser.GetLocationUrl(strUrl);
    return result;
}

} // namespace ReadinessRule
