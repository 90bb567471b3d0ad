// The browser object of the Chromium engine: new windows and dialogs.
#include <platform/CodePage.h>
#include <platform/Prompt.h>

#include "browser/chromium/ChromiumBrowser.h"
#include "browser/chromium/PageLoads.h"
#include "browser/chromium/PopUpScope.h"
#include "browser/common/BrowserEvents.h"

namespace platform {

// The client's own object when a sink hands one over (null and `foreign` set: one that cannot take
// over a page of this application), else a new one.
CComPtr<ChromiumBrowser> ChromiumBrowser::ChooseWindow(CComPtr<IWebBrowser2>& foreign,
                                                       bool& isCancelled) {
    CComPtr<IDispatch> offered;
    {
        const PopUpScope scope;
        offered = RaiseNewWindow2(Events(), isCancelled);
    }
    if (isCancelled || HasQuit() || !HasPage()) {
        isCancelled = true;
        return {};
    }
    void* own = nullptr;
    if (offered && SUCCEEDED(offered->QueryInterface(kClassIid, &own))) {
        CComPtr<ChromiumBrowser> window;
        window.Attach(static_cast<ChromiumBrowser*>(own));
        if (!window->HasPage() && !window->HasQuit()) return window;
    }
    if (offered && SUCCEEDED(offered.QueryInterface(&foreign))) return {};
    const auto window = MakeObject<ChromiumBrowser>(m_windows);
    m_ownWindows.push_back(CComPtr<IWebBrowser2>(window));
    return window;
}

void ChromiumBrowser::BecomePopUp(ChromiumBrowser& opener, const std::string& target,
                                  const std::string& session) {
    m_isPopUp = true;
    const auto application = opener.m_page->Application().shared_from_this();
    const auto page = std::make_shared<ChromiumPage>(application, *this);
    m_page = page;
    if (target.empty())
        application->OpenPageNow(page);
    else
        application->Adopt(page, target, session);
    TakeWindow();
    // A pop-up shows itself; a sink that wants it hidden hides it again.
    put_Visible(VARIANT_TRUE);
}

// The page has opened a window of its own; its browser holds the new page up until it is adopted.
void ChromiumBrowser::OnPopUp(const std::string& target, const std::string& session) {
    CComPtr<IWebBrowser2> foreign;
    bool isCancelled = false;
    const auto application = m_page->Application().shared_from_this();
    const CComPtr<ChromiumBrowser> window = ChooseWindow(foreign, isCancelled);
    if (window) return window->BecomePopUp(*this, target, session);
    if (foreign && !isCancelled)
        application->Divert(target, session, foreign);
    else
        application->ClosePage(target);
}

HRESULT ChromiumBrowser::StartNewWindow(NavigationRequest request) {
    const std::string refusal = RefusalOf(request);
    if (!refusal.empty()) {
        SetStatusText(refusal);
        return E_INVALIDARG;
    }
    Link()->Post([request = std::move(request)](BrowserObject& self) {
        static_cast<ChromiumBrowser&>(self).OpenWindow(request);
    });
    return S_OK;
}

void ChromiumBrowser::OpenWindow(const NavigationRequest& request) {
    if (HasQuit()) return;
    std::string error;
    if (!HasPage() && !Launch(error)) return SetStatusText(error);
    CComPtr<IWebBrowser2> foreign;
    bool isCancelled = false;
    const CComPtr<ChromiumBrowser> window = ChooseWindow(foreign, isCancelled);
    if (isCancelled) return;
    if (window) window->BecomePopUp(*this, {}, {});
    NavigateWith(window ? static_cast<IWebBrowser2&>(*window) : *foreign, request);
}

void ChromiumBrowser::OnDialogOpened(const Json& params) {
    if (m_window) m_window->SetEnabled(false);
    const bool isSeen = m_window && IsVisible() && m_page->Application().HasDisplay();
    if (!isSeen) AnswerDialog(params);
}

void ChromiumBrowser::OnDialogClosed() {
    if (m_window) m_window->SetEnabled(true);
}

// Nobody sees the dialog where the browser shows it: it is asked where the client asks.
void ChromiumBrowser::AnswerDialog(const Json& params) {
    const std::string type = TextOf(params, "type");
    const CString text = AnsiFromUtf8(TextOf(params, "message"));
    const auto page = m_page;
    bool isAccepted = true; // leaving a page is what the client has asked for
    if (type == "alert")
        AfxMessageBox(text, MB_OK);
    else if (type != "beforeunload")
        isAccepted = AfxMessageBox(text, MB_OKCANCEL) == IDOK;
    Json answer{{"accept", isAccepted}};
    if (isAccepted && type == "prompt") answer["promptText"] = TextOf(params, "defaultPrompt");
    if (page->Browser()) page->Send("Page.handleJavaScriptDialog", std::move(answer));
}

} // namespace platform
