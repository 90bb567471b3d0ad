#include "browser/chromium/ChromiumBrowser.h"

#include <algorithm>

#include <platform/Diagnostics.h>

#include "browser/chromium/PageLoads.h"
#include "browser/chromium/PopUpScope.h"

namespace platform {
namespace {

// One message of the browser's holds at most 100 MB, and post data travel in base64.
constexpr std::size_t kMaxPostBytes = std::size_t{74} * 1024 * 1024;

bool IsAscii(const std::string& text) {
    return std::none_of(text.begin(), text.end(),
                        [](char ch) { return static_cast<unsigned char>(ch) >= 0x80; });
}

} // namespace

HRESULT ChromiumBrowser::CreateApplication(REFIID iid, void** ppObject) {
    return Create(ChromiumApplication::Windows::onDisplay, iid, ppObject);
}

HRESULT ChromiumBrowser::CreateControl(REFIID iid, void** ppObject) {
    return Create(ChromiumApplication::Windows::none, iid, ppObject);
}

bool ChromiumBrowser::SendsPostsOnce(std::string& error) {
    const auto browser = MakeObject<ChromiumBrowser>(ChromiumApplication::Windows::none);
    return browser->Launch(error) && browser->m_page->Application().SendsPostsOnce();
}

HRESULT ChromiumBrowser::Create(ChromiumApplication::Windows windows, REFIID iid, void** ppObject) {
    *ppObject = nullptr;
    const auto browser = MakeObject<ChromiumBrowser>(windows);
    // What a sink makes while it is asked for a pop-up's window will show a page of the same
    // application: it starts none of its own until it has to.
    std::string error;
    if (!PopUpScope::IsOpen() && !browser->Launch(error)) {
        ReportDiagnostic(Severity::failure, CString(error));
        return FindChromium() ? E_FAIL : REGDB_E_CLASSNOTREG;
    }
    return browser->QueryInterface(iid, ppObject);
}

ChromiumBrowser::~ChromiumBrowser() {
    LetGo();
}

void* ChromiumBrowser::FindOther(REFIID iid) {
    return iid == kClassIid ? this : BrowserObject::FindOther(iid);
}

bool ChromiumBrowser::Launch(std::string& error) {
    const auto application = ChromiumApplication::Start(m_windows, error);
    if (!application) return false;
    const auto page = std::make_shared<ChromiumPage>(application, *this);
    if (!application->OpenPageNow(page)) {
        error = "Chromium has opened no page";
        page->Detach();
        return false;
    }
    TakePage(page);
    return true;
}

void ChromiumBrowser::TakePage(std::shared_ptr<ChromiumPage> page) {
    m_page = std::move(page);
    TakeWindow();
}

void ChromiumBrowser::TakeWindow() {
    if (m_windows == ChromiumApplication::Windows::none) return;
    m_window = m_page->Application().TakeWindow();
    m_window->OnVisibleChanged([link = Link()](bool isVisible) {
        link->Post([isVisible](BrowserObject& self) { self.NoteVisible(isVisible); });
    });
    if (IsVisible()) m_window->Show(true);
}

// Empty when the request can go out exactly as it was given.
std::string ChromiumBrowser::RefusalOf(const NavigationRequest& request) const {
    if (request.body.size() > kMaxPostBytes)
        return "post data above 74 MiB cannot be handed to the browser";
    for (const HeaderField& field : request.headers)
        if (!IsAscii(field.value))
            return "the header block holds characters that the browser cannot send: " + field.name;
    return {};
}

HRESULT ChromiumBrowser::StartNavigation(NavigationRequest request) {
    std::string error = RefusalOf(request);
    if (error.empty() && !HasPage()) Launch(error);
    if (!error.empty()) {
        SetStatusText(error);
        SetBusy(false);
        SetReadyState(READYSTATE_COMPLETE);
        ReportDiagnostic(Severity::failure, CString(error));
        return E_INVALIDARG;
    }
    m_page->Loads().Navigate(std::move(request));
    return S_OK;
}

void ChromiumBrowser::StopLoading() {
    if (HasPage()) m_page->Loads().Stop();
}

void ChromiumBrowser::ShowWindow(bool isVisible) {
    if (m_window) m_window->Show(isVisible);
}

void ChromiumBrowser::SetEngineOffline(bool isOffline) {
    if (HasPage()) m_page->Loads().SetOffline(isOffline);
}

HWND ChromiumBrowser::Window() const {
    return m_window ? m_window->Handle() : BrowserObject::Window();
}

// After Quit: the page goes, and the application with its last one.
void ChromiumBrowser::EndEngine() {
    m_ownWindows.clear();
    m_window.reset();
    if (!HasPage()) return;
    const auto page = std::exchange(m_page, nullptr);
    page->Detach();
    page->Application().ClosePage(page->Target());
}

// Without Quit: an application goes on, as does a pop-up that its user sees; a control does not.
void ChromiumBrowser::LetGo() {
    m_window.reset();
    if (!HasPage()) return;
    const auto page = std::exchange(m_page, nullptr);
    page->Detach();
    const bool isWanted =
        m_windows == ChromiumApplication::Windows::onDisplay && (!m_isPopUp || IsVisible());
    if (!isWanted)
        page->Application().ClosePage(page->Target());
    else if (page->Application().IsAlive())
        page->Application().KeepPage(page->Target(), page->Session());
}

void ChromiumBrowser::OnTargetGone() {
    m_ownWindows.clear();
    m_window.reset();
    if (HasPage()) std::exchange(m_page, nullptr)->Detach();
    NoteGone();
}

} // namespace platform
