#include "browser/builtin/Navigation.h"

#include <algorithm>

#include <platform/Diagnostics.h>
#include <platform/Secrets.h>

#include "browser/builtin/BuiltinBrowser.h"
#include "browser/builtin/Limits.h"
#include "browser/common/BrowserEvents.h"
#include "browser/common/PageDocument.h"

namespace platform {

struct Navigation::Page {
    CComPtr<FrameBrowser> frame; // null for the top level
    std::weak_ptr<Page> parent;
    int depth = 0;
    NavigationRequest request;
    std::string url; // where the reply came from
    std::shared_ptr<ReplyBody> body;
    bool hasHead = false;
    bool areFramesStarted = false;
    bool isComplete = false;
    int immediateRefreshes = 0;
    std::optional<RefreshRule> refresh;
    std::vector<PagePtr> frames;
};

namespace {

NavigationRequest GetRequest(const std::string& url) {
    NavigationRequest request;
    request.target.url = url;
    return request;
}

} // namespace

Navigation::Navigation(BuiltinBrowser& browser, NavigationRequest request)
    : m_browser(browser), m_top(std::make_shared<Page>()),
      m_budget(std::make_shared<ByteBudget>(kMaxPageBytes)) {
    m_top->request = std::move(request);
}

BrowserObject& Navigation::Face(const Page& page) const {
    return page.frame ? static_cast<BrowserObject&>(*page.frame) : m_browser;
}

void Navigation::Begin() {
    if (!m_browser.Events().HasSinks() && !m_browser.IsOffline()) return Fetch(m_top);
    m_browser.Link()->Post([self = shared_from_this()](BrowserObject&) {
        if (!self->m_isAbandoned) self->Announce(self->m_top);
    });
}

void Navigation::BeginInDispatch() {
    Announce(m_top);
}

void Navigation::Abandon() {
    if (m_isAbandoned) return;
    m_isAbandoned = true;
    for (const auto& [id, page] : m_fetches)
        m_browser.Network().Cancel(id);
    m_fetches.clear();
}

void Navigation::Announce(const PagePtr& page) {
    BrowserObject& face = Face(*page);
    face.SetReadyState(READYSTATE_LOADING);
    face.SetBusy(true);
    face.SetReplyStatus(0);
    const bool isWanted = RaiseBeforeNavigate2(m_browser.Events(), face.Dispatch(), page->request);
    if (m_isAbandoned) return;
    if (isWanted) return Fetch(page);
    face.SetStatusText("cancelled");
    SettleState(*page);
    End(page);
}

void Navigation::Fetch(const PagePtr& page) {
    if (m_browser.IsOffline()) return Fail(page, page->request.target.url, "browser is offline");
    page->body = std::make_shared<ReplyBody>(m_budget);
    FetchRequest fetch;
    fetch.id = m_browser.NextFetchId();
    fetch.url = page->request.target.url;
    fetch.credentials = m_browser.CurrentCredentials();
    fetch.postData = page->request.body;
    fetch.headers = page->request.headers;
    fetch.body = page->body;
    m_fetches[fetch.id] = page;
    m_browser.Network().Start(std::move(fetch));
}

void Navigation::OnEvent(NetworkEvent& event) {
    const auto found = m_fetches.find(event.id);
    if (m_isAbandoned || found == m_fetches.end()) return;
    const PagePtr page = found->second;
    if (const auto* head = std::get_if<HeadReceived>(&event.what)) {
        OnHead(page, *head);
    } else if (std::holds_alternative<FirstBytesReceived>(event.what)) {
        Face(*page).SetReadyState(READYSTATE_INTERACTIVE);
    } else if (auto* received = std::get_if<PageReceived>(&event.what)) {
        m_fetches.erase(found);
        OnPage(page, *received);
    } else if (const auto* failed = std::get_if<FetchFailed>(&event.what)) {
        m_fetches.erase(found);
        Fail(page, failed->url, failed->reason);
    }
}

void Navigation::OnHead(const PagePtr& page, const HeadReceived& head) {
    Face(*page).SetReplyStatus(head.reply.status);
    const std::string reason = ReasonNotShown(head.reply);
    if (!reason.empty()) {
        const auto fetch = std::find_if(m_fetches.begin(), m_fetches.end(),
                                        [&](const auto& entry) { return entry.second == page; });
        m_browser.Network().Cancel(fetch->first);
        m_fetches.erase(fetch);
        return Fail(page, head.url, reason);
    }
    BrowserObject& face = Face(*page);
    page->url = head.url;
    page->hasHead = true;
    face.SetLocation(head.url);
    face.SetDocument(CComPtr<IDispatch>(MakeObject<PageDocument>(page->body)));
    face.SetReadyState(READYSTATE_LOADED);
    RaiseNavigateComplete2(m_browser.Events(), face.Dispatch(), head.url);
}

void Navigation::OnPage(const PagePtr& page, PageReceived& received) {
    Face(*page).SetReadyState(READYSTATE_INTERACTIVE); // also for a page without any bytes
    if (!received.problem.empty())
        ReportDiagnostic(Severity::trace, UrlForLog(page->url) + ": " + received.problem.c_str());
    page->refresh = std::move(received.scan.refresh);
    StartFrames(page, received.scan.frames);
}

void Navigation::StartFrames(const PagePtr& page, const std::vector<std::string>& urls) {
    for (const std::string& url : urls) {
        if (page->depth >= kMaxFrameDepth || m_frameCount >= kMaxFrames) break;
        if (IsOwnAncestor(*page, url)) continue;
        ++m_frameCount;
        auto child = std::make_shared<Page>();
        child->frame = MakeObject<FrameBrowser>();
        child->parent = page;
        child->depth = page->depth + 1;
        child->request = GetRequest(url);
        page->frames.push_back(std::move(child));
    }
    const std::vector<PagePtr> frames = page->frames;
    for (const PagePtr& frame : frames) {
        Announce(frame);
        if (m_isAbandoned) return;
    }
    page->areFramesStarted = true;
    CompleteIfReady(page);
}

bool Navigation::IsOwnAncestor(const Page& page, const std::string& url) const {
    if (WithoutFragment(page.url) == WithoutFragment(url)) return true;
    const PagePtr parent = page.parent.lock();
    return parent && IsOwnAncestor(*parent, url);
}

void Navigation::CompleteIfReady(const PagePtr& page) {
    const bool areFramesComplete = std::all_of(page->frames.begin(), page->frames.end(),
                                               [](const PagePtr& one) { return one->isComplete; });
    if (page->areFramesStarted && areFramesComplete && !page->isComplete) Complete(page);
}

void Navigation::Complete(const PagePtr& page) {
    const bool isSentOn = page->refresh && page->refresh->seconds == 0;
    // A page that is left at once never shows the state of a complete one.
    if (!isSentOn) SettleState(*page);
    RaiseDocumentComplete(m_browser.Events(), Face(*page).Dispatch(), page->url);
    if (m_isAbandoned || (isSentOn && RefreshAtOnce(page))) return;
    if (isSentOn) SettleState(*page);
    End(page);
}

// False when the page has been sent on too often and stays.
bool Navigation::RefreshAtOnce(const PagePtr& page) {
    const std::string target =
        page->refresh->reference.empty() ? page->url : page->refresh->reference;
    const int count = page->frame ? ++page->immediateRefreshes : m_browser.CountRefresh();
    if (count > kMaxImmediateRefreshes) {
        const std::string text = "more than " + std::to_string(kMaxImmediateRefreshes) +
                                 " immediate refreshes in a row; the last page stays";
        Face(*page).SetStatusText(text);
        ReportDiagnostic(Severity::failure, UrlForLog(page->url) + ": " + text.c_str());
        page->refresh.reset();
        return false;
    }
    if (!page->frame) {
        m_browser.Refresh(target); // ends this navigation
        return true;
    }
    page->request = GetRequest(target);
    page->hasHead = false;
    page->areFramesStarted = false;
    page->refresh.reset();
    page->frames.clear();
    Announce(page);
    return true;
}

void Navigation::SettleState(Page& page) {
    Face(page).SetReadyState(READYSTATE_COMPLETE);
    Face(page).SetBusy(false);
}

void Navigation::Fail(const PagePtr& page, const std::string& url, const std::string& reason) {
    ReportDiagnostic(Severity::failure, UrlForLog(url) + ": " + reason.c_str());
    BrowserObject& face = Face(*page);
    page->url = url;
    page->refresh.reset();
    face.SetDocument(nullptr);
    page->body.reset();
    face.SetStatusText(reason);
    face.SetLocation(url);
    // Sinks count navigations and documents, so both events come, whatever happened.
    if (!page->hasHead) RaiseNavigateComplete2(m_browser.Events(), face.Dispatch(), url);
    if (m_isAbandoned) return;
    SettleState(*page);
    RaiseDocumentComplete(m_browser.Events(), face.Dispatch(), url);
    if (!m_isAbandoned) End(page);
}

// The page is done, one way or the other.
void Navigation::End(const PagePtr& page) {
    page->isComplete = true;
    if (const PagePtr parent = page->parent.lock()) return CompleteIfReady(parent);
    if (!page->frame) m_browser.OnPageEnd(page->url, page->refresh);
}

} // namespace platform
