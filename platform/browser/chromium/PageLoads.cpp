// What a page loads: the client's navigation.
#include "browser/chromium/PageLoads.h"

#include "browser/chromium/ChromiumBrowser.h"
#include "browser/chromium/ChromiumPage.h"
#include "browser/chromium/NetErrors.h"
#include "browser/common/BrowserEvents.h"
#include "browser/common/FileUrl.h"

namespace platform {
namespace {

constexpr const char* kAborted = "net::ERR_ABORTED";

// The URL under which the browser finds a local file. Empty, or why it cannot be shown.
std::string MapFile(std::string& url) {
    if (SchemeOf(url) != "file") return {};
    std::string fileName;
    std::string reason;
    if (!FileNameOfUrl(url, fileName, reason)) return reason;
    reason = ReasonNotAFile(fileName);
    url = UrlOfFileName(fileName);
    return reason;
}

} // namespace

PageLoads::PageLoads(ChromiumPage& page) : m_page(page), m_override(page) {}

PageLoads::~PageLoads() = default;

ChromiumBrowser& PageLoads::Browser() const {
    return *m_page.Browser();
}

PageLoads::Frame& PageLoads::Top() {
    return m_frames[m_page.Target()];
}

bool PageLoads::IsTop(const std::string& frame) const {
    return frame == m_page.Target();
}

BrowserObject& PageLoads::Face(const DocumentLoad& load) {
    if (IsTop(load.frame)) return Browser();
    CComPtr<FrameBrowser>& face = m_frames[load.frame].face;
    if (!face) face = MakeObject<FrameBrowser>();
    return *face;
}

DocumentLoadPtr PageLoads::Find(const DevToolsEvent& event) const {
    const auto found = m_loads.find(TextOf(event.params, "requestId"));
    return found == m_loads.end() ? nullptr : found->second;
}

bool PageLoads::IsShown(const DocumentLoadPtr& load) {
    const Frame& frame = m_frames[load->frame];
    return frame.current == load || frame.next == load;
}

void PageLoads::Navigate(NavigationRequest request) {
    AbandonAll();
    m_override.Disarm();
    const auto load = std::make_shared<DocumentLoad>(m_page.Target());
    load->isByClient = true;
    load->url = request.target.url;
    load->request = std::move(request);
    m_client = load;
    m_isClientDue = false;
    m_isClientHeldUp = false;
    Top().next = load;
    if (!Browser().Events().HasSinks() && !Browser().IsOffline()) return Start(load);
    Browser().Link()->Post([self = shared_from_this(), load](BrowserObject&) {
        if (!self->IsOver(load)) self->Announce(load);
    });
}

void PageLoads::Announce(const DocumentLoadPtr& load) {
    const bool isWanted =
        RaiseBeforeNavigate2(Browser().Events(), Browser().Dispatch(), load->request);
    if (IsOver(load)) return;
    if (!isWanted) return Cancel(load);
    if (Browser().IsOffline()) return Fail(load, "browser is offline", Aftermath::errorPage);
    Start(load);
}

// A URL that differs from the shown one by its fragment alone would be gone to within the shown
// page, without a request; an empty page in between makes it a new one.
void PageLoads::Start(const DocumentLoadPtr& load) {
    std::string reason = MapFile(load->request.target.url);
    if (reason.empty()) reason = ReasonAgainst(load->url);
    if (!reason.empty())
        return Browser().Link()->Post([self = shared_from_this(), load, reason](BrowserObject&) {
            if (!self->IsOver(load)) self->Fail(load, reason, Aftermath::errorPage);
        });
    const std::string& url = load->request.target.url;
    const bool isWithinPage =
        url.find('#') != std::string::npos && WithoutFragment(url) == WithoutFragment(m_shownUrl);
    if (!isWithinPage) return Request(load);
    m_page.Send("Page.navigate", {{"url", "about:blank"}},
                [this, load](DevToolsReply&) { Request(load); });
}

// The answer to stopLoading comes before anything is reported of the navigation behind it: what is
// still reported of earlier ones ends there.
void PageLoads::Request(const DocumentLoadPtr& load) {
    if (IsOver(load) || m_client != load) return;
    m_page.Send("Network.setCacheDisabled",
                {{"cacheDisabled", (load->request.flags & navNoReadFromCache) != 0}});
    m_override.Arm(load->request, {[this, load](const std::string& reason) {
                                       Fail(load, reason, Aftermath::errorPage);
                                   },
                                   [this, load] { StartOver(load); }});
    m_page.Send("Page.stopLoading", Json::object(), [this, load](DevToolsReply& reply) {
        if (m_client != load) return;
        m_isClientDue = true;
        m_isShowingAnother = !reply.IsOk();
        m_hasShownAnother = false;
    });
    m_page.Send("Page.navigate", {{"url", load->request.target.url}},
                [this, load, attempt = ++load->attempts](DevToolsReply& reply) {
                    if (attempt == load->attempts) OnNavigateReply(load, reply);
                });
}

// The browser's own navigation is dropped, the client's is the same one still.
void PageLoads::StartOver(const DocumentLoadPtr& load) {
    m_loads.erase(load->loader);
    m_client = load;
    m_isClientDue = false;
    PutCredentialsIntoHeader(load->request);
    Request(load);
}

// While the browser is about to show the error page of a document before, it takes no other.
void PageLoads::OnTopShown() {
    m_hasShownAnother = true;
    if (std::exchange(m_isClientHeldUp, false) && m_client) Request(m_client);
}

void PageLoads::OnNavigateReply(const DocumentLoadPtr& load, const DevToolsReply& reply) {
    if (IsOver(load)) return;
    const std::string failure = reply.IsOk() ? TextOf(reply.result, "errorText") : reply.error;
    if (failure == kAborted && m_client == load && m_isShowingAnother) {
        if (m_hasShownAnother) return Request(load);
        m_isClientHeldUp = true;
        return;
    }
    // It comes when the page is shown; a renderer that is just starting may not report that.
    if (failure.empty() && load->hasHead && Top().next == load) return Commit(load);
    if (failure.empty() || load->hasHead) return;
    Fail(load, ReasonOf(failure, load->url), Aftermath::errorPage);
}

std::string PageLoads::ReasonAgainst(const std::string& url) const {
    const CertificateProblem& problem = m_page.Application().Certificates();
    return problem.isOfFile && SchemeOf(url) == "https" ? problem.text : std::string();
}

// Pages go on to https by themselves, too.
std::string PageLoads::ReasonOf(const std::string& error, const std::string& url) const {
    const std::string& problem = m_page.Application().Certificates().text;
    const bool isUntrusted = error == "net::ERR_CERT_AUTHORITY_INVALID";
    return isUntrusted && !problem.empty() ? problem : NetErrorText(error, url);
}

void PageLoads::AbandonAll() {
    if (m_client) m_client->isDone = true;
    m_client.reset();
    m_hasOpened = false;
    for (auto& [loader, load] : m_loads)
        load->isDone = true;
    m_loads.clear();
    for (auto& [id, frame] : m_frames) {
        frame.current.reset();
        frame.next.reset();
        frame.isLeaving = false;
        frame.isOpened = false;
    }
}

void PageLoads::Stop() {
    if (m_client) m_client->isDone = true;
    m_client.reset();
    for (auto& [loader, load] : m_loads) {
        load->isDone = true;
        load->source->Freeze();
    }
    m_override.Disarm();
    if (m_page.IsAttached()) m_page.Send("Page.stopLoading");
}

void PageLoads::SetOffline(bool isOffline) {
    m_page.Send("Network.emulateNetworkConditions", {{"offline", isOffline},
                                                     {"latency", 0},
                                                     {"downloadThroughput", -1},
                                                     {"uploadThroughput", -1}});
}

void PageLoads::OnCrash() {
    for (const DocumentLoadPtr& load : {Top().next, Top().current})
        if (load && !IsOver(load)) Fail(load, "the page's process has ended", Aftermath::errorPage);
}

void PageLoads::Detach() {
    m_probe.reset();
    AbandonAll();
    m_isDetached = true;
}

} // namespace platform
