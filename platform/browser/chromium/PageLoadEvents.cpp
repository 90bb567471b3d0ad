// What a page loads: the browser's events.
#include <charconv>
#include <string_view>
#include <unordered_map>

#include "browser/chromium/ChromiumBrowser.h"
#include "browser/chromium/ChromiumPage.h"
#include "browser/chromium/NetErrors.h"
#include "browser/chromium/PageLoads.h"
#include "browser/common/BrowserLimits.h"
#include "browser/common/PageType.h"

namespace platform {
namespace {

bool IsDocument(const DevToolsEvent& event) {
    return TextOf(event.params, "type") == "Document";
}

std::string HeaderValue(const Json& headers, std::string_view name) {
    for (const auto& [key, value] : headers.items())
        if (value.is_string() && EqualsIgnoringCase(key, name)) return value.get<std::string>();
    return {};
}

ReplyType TypeOf(const Json& response) {
    const Json& headers = ObjectOf(response, "headers");
    ReplyType type;
    type.status = NumberOf(response, "status");
    type.type = WithoutParameters(HeaderValue(headers, "Content-Type"));
    type.isAttachment =
        WithoutParameters(HeaderValue(headers, "Content-Disposition")) == "attachment";
    return type;
}

// Of a body that is sent as it is; 0 when the head does not say.
std::size_t AnnouncedBytes(const Json& response) {
    const Json& headers = ObjectOf(response, "headers");
    const std::string length = HeaderValue(headers, "Content-Length");
    const bool isPlain = HeaderValue(headers, "Content-Encoding").empty();
    std::size_t bytes = 0;
    if (isPlain) std::from_chars(length.data(), length.data() + length.size(), bytes);
    return bytes;
}

std::string WithFragment(const std::string& url, const std::string& asked) {
    const std::size_t fragment = asked.find('#');
    if (fragment == std::string::npos || url.find('#') != std::string::npos) return url;
    return url + asked.substr(fragment);
}

} // namespace

std::string ShownUrl(const std::string& url) {
    if (url.find('@') == std::string::npos) return url;
    return ResolveReference(url, url).value_or(std::string());
}

void PageLoads::OnEvent(DevToolsEvent& event) {
    static const std::unordered_map<std::string_view, Handler> handlers{
        {"Page.frameStartedNavigating", &PageLoads::OnStartedNavigating},
        {"Network.requestWillBeSent", &PageLoads::OnRequest},
        {"Network.responseReceived", &PageLoads::OnResponse},
        {"Network.dataReceived", &PageLoads::OnData},
        {"Network.loadingFinished", &PageLoads::OnFinished},
        {"Network.loadingFailed", &PageLoads::OnFailed},
        {"Page.frameNavigated", &PageLoads::OnNavigated},
        {"Page.frameStoppedLoading", &PageLoads::OnStoppedLoading},
        {"Page.frameAttached", &PageLoads::OnFrameAttached},
        {"Page.frameDetached", &PageLoads::OnFrameDetached},
        {"Page.frameRequestedNavigation", &PageLoads::OnNavigationRequested},
        {"Page.frameScheduledNavigation", &PageLoads::OnNavigationScheduled},
        {"Page.frameClearedScheduledNavigation", &PageLoads::OnNavigationCleared},
        {"Page.loadEventFired", &PageLoads::OnLoadEvent},
        {"Page.documentOpened", &PageLoads::OnDocumentOpened},
        {"Fetch.requestPaused", &PageLoads::OnPaused},
        {"Fetch.authRequired", &PageLoads::OnAuthRequired},
    };
    const auto found = handlers.find(event.method);
    if (m_isDetached || found == handlers.end()) return;
    const auto keep = shared_from_this();
    if (event.method.starts_with("Page.")) m_probe.reset();
    (this->*found->second)(event);
    CheckOpened();
}

void PageLoads::OnStartedNavigating(const DevToolsEvent& event) {
    const std::string type = TextOf(event.params, "navigationType");
    if (type == "sameDocument" || type == "historySameDocument") return;
    Begin(TextOf(event.params, "frameId"), TextOf(event.params, "loaderId"),
          TextOf(event.params, "url"));
}

// Pop-ups are attached to when their navigation has begun already.
void PageLoads::OnRequest(const DevToolsEvent& event) {
    m_traffic.OnRequest(event.params);
    const std::string loader = TextOf(event.params, "loaderId");
    if (!IsDocument(event) || loader != TextOf(event.params, "requestId")) return;
    Begin(TextOf(event.params, "frameId"), loader,
          TextOf(ObjectOf(event.params, "request"), "url"));
}

void PageLoads::OnResponse(const DevToolsEvent& event) {
    const DocumentLoadPtr load = Find(event);
    if (!load || IsOver(load) || load->hasHead || !IsDocument(event)) return;
    const Json& response = ObjectOf(event.params, "response");
    const std::string url = ShownUrl(TextOf(response, "url"));
    if (!IsHttpUrl(url) && SchemeOf(url) != "file") return;
    if (IsHttpUrl(url) || !load->isByClient) load->url = WithFragment(url, load->url);
    const ReplyType type = TypeOf(response);
    Face(*load).SetReplyStatus(IsHttpUrl(url) ? type.status : 0);
    const std::string reason = ReasonNotShown(type);
    if (!reason.empty()) {
        if (IsTop(load->frame)) m_page.Send("Page.stopLoading");
        return Fail(load, reason, Aftermath::pageStays);
    }
    load->announcedBytes = AnnouncedBytes(response);
    TakeHead(load, event.session);
}

void PageLoads::OnData(const DevToolsEvent& event) {
    m_traffic.OnData(event.params);
    const DocumentLoadPtr load = Find(event);
    if (load) load->source->OnData(event.params);
    if (load) CheckSize(load);
    if (m_isDetached) return;
    const DocumentLoadPtr page = Top().current;
    if (page && m_traffic.Bytes() > kMaxLoadedBytes) GiveUp(page, LoadedTooMuchText());
}

void PageLoads::OnFinished(const DevToolsEvent& event) {
    m_traffic.OnEnd(event.params);
    if (const DocumentLoadPtr load = Find(event)) load->source->OnFinished();
}

void PageLoads::OnFailed(const DevToolsEvent& event) {
    m_traffic.OnEnd(event.params);
    const DocumentLoadPtr load = Find(event);
    if (!load || IsOver(load)) return;
    const std::string error = TextOf(event.params, "errorText");
    if (load->isSuperseded) {
        load->document.Release();
        return Complete(load);
    }
    if (load->hasHead && error == "net::ERR_HTTP_RESPONSE_CODE_FAILURE") {
        // The server's own page, of no bytes: the browser shows one of its own in its place.
        load->source->BeEmpty();
        load->isLoaded = true;
        return Commit(load);
    }
    Fail(load, ReasonOf(error, load->url),
         error == "net::ERR_ABORTED" ? Aftermath::pageStays : Aftermath::errorPage);
}

void PageLoads::OnNavigated(const DevToolsEvent& event) {
    const Json& shown = ObjectOf(event.params, "frame");
    const std::string id = TextOf(shown, "id");
    m_frames[id].parent = TextOf(shown, "parentId");
    m_frames[id].session = event.session;
    m_frames[id].isOpened = false;
    const auto found = m_loads.find(TextOf(shown, "loaderId"));
    if (IsTop(id)) {
        m_shownUrl = TextOf(shown, "url") + TextOf(shown, "urlFragment");
        OnTopShown();
    }
    if (found == m_loads.end()) return;
    const DocumentLoadPtr load = found->second;
    if (IsOver(load)) return;
    if (!TextOf(shown, "unreachableUrl").empty())
        return Fail(load, "the browser cannot show the page", Aftermath::errorPage);
    Commit(load);
}

// Behind the load event, which a page that stops its own loading never sees; a refresh without a
// delay has been reported by then.
void PageLoads::OnStoppedLoading(const DevToolsEvent& event) {
    const auto found = m_frames.find(TextOf(event.params, "frameId"));
    if (found == m_frames.end()) return;
    const DocumentLoadPtr load = found->second.current;
    if (!load || IsOver(load) || found->second.next) return;
    if (!IsTop(load->frame) || load->hasLoadEvent) return LoadEnded(load);
    // Stopped, or the end of its renderer, which is told behind and answers nothing.
    m_page.Send("Runtime.evaluate", {{"expression", "0"}}, [this, load](DevToolsReply& reply) {
        if (reply.IsOk() && !IsOver(load)) LoadEnded(load);
    });
}

void PageLoads::OnLoadEvent(const DevToolsEvent& event) {
    const DocumentLoadPtr load = Top().current;
    if (load && event.session == m_page.Session()) load->hasLoadEvent = true;
}

void PageLoads::OnFrameAttached(const DevToolsEvent& event) {
    m_frames[TextOf(event.params, "frameId")].parent = TextOf(event.params, "parentFrameId");
}

void PageLoads::OnFrameDetached(const DevToolsEvent& event) {
    // A frame that moves to another process stays what it is.
    if (TextOf(event.params, "reason") != "swap") DropFrame(TextOf(event.params, "frameId"));
}

void PageLoads::OnNavigationRequested(const DevToolsEvent& event) {
    if (TextOf(event.params, "disposition") != "currentTab") return;
    const auto found = m_frames.find(TextOf(event.params, "frameId"));
    if (found != m_frames.end() && found->second.current) found->second.isLeaving = true;
}

// A refresh without a delay: the page is left as soon as it is complete.
void PageLoads::OnNavigationScheduled(const DevToolsEvent& event) {
    const std::string reason = TextOf(event.params, "reason");
    if (reason != "metaTagRefresh" && reason != "httpHeaderRefresh") return;
    if (NumberOf(event.params, "delay") == 0)
        OnNavigationRequested(
            {event.session,
             {},
             {{"frameId", TextOf(event.params, "frameId")}, {"disposition", "currentTab"}}});
}

void PageLoads::OnNavigationCleared(const DevToolsEvent& event) {
    const auto found = m_frames.find(TextOf(event.params, "frameId"));
    if (found == m_frames.end() || !found->second.isLeaving) return;
    found->second.isLeaving = false;
    if (const DocumentLoadPtr load = found->second.current) CompleteIfReady(load);
}

} // namespace platform
