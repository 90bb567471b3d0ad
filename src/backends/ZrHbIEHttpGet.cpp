#include "backends/ZrHbIEHttpGet.h"

#include <new>

#include <ZrHbResultCodes.h>
#include <platform/Prompt.h>

#include "backends/BackendTexts.h"
#include "backends/NavigationRequest.h"

namespace {

constexpr RECT kOutsideTheParent{-5, -5, 0, 0};

constexpr const char* kNoMemory = "Cannot Connect to IE: new failed!";
constexpr const char* kNoParent =
    "Cannot connect to Internet Explorer. (Internal Error: GetDummyCWnd failed!?!)";
constexpr const char* kNoControl = "Cannot connect to Internet Explorer.";
constexpr const char* kStalled = "Read failed.";
constexpr const char* kNoInterface = "Get_IWebBrowser2_ptr cannot be used with "
                                     "eConnectWith_InternetExplorer and eInvisible !";
constexpr const char* kNotVisible = "Warning: CZrHbIEHttpGet: PutVisible() cannot be used with "
                                    "eConnectWith_InternetExplorer and eInvisible !";
constexpr const char* kNotKept = "Warning: CZrHbIEHttpGet: KeepThisFrameOpen() cannot be used with "
                                 "eConnectWith_InternetExplorer and eInvisible !";

DWORD Fail(DWORD result, const char* pszText, CString& strErr) {
    strErr = pszText;
    return result;
}

// The control as the readiness rule sees it. A call that fails throws, so every answer is true
// but for a document that is not there.
class LiveControl final : public LiveBrowser {
public:
    explicit LiveControl(CZrHbWebBrowser2& control) : m_control(control) {}
    bool GetReadyState(READYSTATE& state) override {
        state = static_cast<READYSTATE>(m_control.GetReadyState());
        return true;
    }
    bool GetBusy(bool& isBusy) override {
        isBusy = m_control.GetBusy() != FALSE;
        return true;
    }
    bool GetDocument(CComPtr<IDispatch>& document) override {
        document.Attach(m_control.GetDocument());
        return static_cast<bool>(document);
    }
    bool GetOffline(bool& isOffline) override {
        isOffline = m_control.GetOffline() != FALSE;
        return true;
    }
    bool GetLocationUrl(CString& strUrl) override {
        strUrl = m_control.GetLocationURL();
        return true;
    }

private:
    CZrHbWebBrowser2& m_control;
};

} // namespace

CZrHbIEHttpGet::~CZrHbIEHttpGet() {
    Disconnect();
}

DWORD CZrHbIEHttpGet::Connect(HWND hWndParent, CString& strErr) {
    Disconnect();
    std::unique_ptr<CZrHbWebBrowser2> control(new (std::nothrow) CZrHbWebBrowser2);
    if (!control) return Fail(ZRHB_CANNOT_NAVIGATE, kNoMemory, strErr);
    CWnd* const parent = CWnd::FromHandle(hWndParent);
    if (!parent) return Fail(ZRHB_CONNECT_FAILED, kNoParent, strErr);
    if (!control->CreateControl(CLSID_WebBrowser, nullptr, WS_VISIBLE, kOutsideTheParent, parent,
                                0))
        return Fail(ZRHB_CONNECT_FAILED, kNoControl, strErr);
    control->SetOffline(FALSE);
    m_control = std::move(control);
    strErr.Empty();
    return ZRHB_OK;
}

DWORD CZrHbIEHttpGet::Open(const CString& strUrl, CString& strErr, const void* pPostData,
                           DWORD nPostLen, const char* pszHeaders, BOOL bKeepPageOpen) {
    if (!m_control) return Fail(ZRHB_OPEN_NOT_CONNECTED, BackendTexts::kOpenNotConnected, strErr);
    m_keepPageOpen = bKeepPageOpen;
    m_isOpenedInNewWindow = std::exchange(m_isNewWindow, false);
    const LONG flags = m_isOpenedInNewWindow ? kNewWindowNavigationFlags : kNavigationFlags;
    NavigationRequest request(strUrl, pPostData, nPostLen, pszHeaders, m_connectVersion, flags);
    m_control->Navigate(strUrl, request.Flags(), request.TargetFrame(), request.PostData(),
                        request.Headers());
    m_hasBeenBusy = false;
    return ZRHB_OK;
}

DWORD CZrHbIEHttpGet::Read(CByteBuffer& page, CString& strErr, DWORD& nLength, CString& strUrl) {
    return ReadPage(page, strErr, nLength, strUrl);
}

DWORD CZrHbIEHttpGet::Read(CString& page, CString& strErr, DWORD& nLength, CString& strUrl) {
    return ReadPage(page, strErr, nLength, strUrl);
}

template <class TPage>
DWORD CZrHbIEHttpGet::ReadPage(TPage& page, CString& strErr, DWORD& nLength, CString& strUrl) {
    strErr.Empty();
    nLength = 0;
    strUrl.Empty();
    if (!m_control) return Fail(ZRHB_NO_OPEN_PAGE, BackendTexts::kReadNotConnected, strErr);
    if (m_isOpenedInNewWindow)
        return Fail(ZRHB_READ_FAILED, BackendTexts::kReadInNewWindow, strErr);

    LiveControl browser(*m_control);
    BrowserState state;
    ReadinessRule::AskState(browser, state, strErr);
    if (IsStalled(browser, state, strErr)) return Fail(ZRHB_READ_FAILED, kStalled, strErr);
    m_hasBeenBusy = m_hasBeenBusy || state.isBusy;
    DWORD result = ReadinessRule::CheckReady(state, strErr, nLength);
    if (result != ZRHB_OK) return result;
    result = ReadinessRule::ReadDocument(browser, state, page, strErr, nLength);
    if (result != ZRHB_OK) return result;
    if (state.readyState == READYSTATE_COMPLETE) NotePageRead();
    browser.GetLocationUrl(strUrl);
    return ZRHB_OK;
}

// A page that was busy and no longer is, without being complete: looked at twice, because it may
// be just about to be.
bool CZrHbIEHttpGet::IsStalled(LiveBrowser& browser, BrowserState& state, CString& strErr) {
    const auto looksStalled = [&] {
        return !state.isBusy && state.readyState != READYSTATE_COMPLETE;
    };
    if (!m_hasBeenBusy || !looksStalled()) return false;
    ReadinessRule::AskState(browser, state, strErr);
    return looksStalled();
}

// A page that is kept may start loading anew; only then can it stall again.
void CZrHbIEHttpGet::NotePageRead() {
    if (m_keepPageOpen) {
        m_hasBeenBusy = false;
    } else {
        m_control->Stop();
    }
}

void CZrHbIEHttpGet::Disconnect() {
    Close();
    if (const auto control = std::move(m_control)) control->DestroyWindow();
}

void CZrHbIEHttpGet::PutVisible(BOOL) {
    AfxMessageBox(kNotVisible);
}

void CZrHbIEHttpGet::KeepThisFrameOpen() {
    AfxMessageBox(kNotKept);
}

IWebBrowser2* CZrHbIEHttpGet::Get_IWebBrowser2_ptr(CString& strErr) {
    strErr = kNoInterface;
    return nullptr;
}
