// What a page loads: what becomes of each document.
#include <algorithm>

#include <platform/Diagnostics.h>
#include <platform/Secrets.h>

#include "browser/chromium/ChromiumBrowser.h"
#include "browser/chromium/ChromiumPage.h"
#include "browser/chromium/NetErrors.h"
#include "browser/chromium/PageLoads.h"
#include "browser/common/BrowserEvents.h"
#include "browser/common/BrowserLimits.h"
#include "browser/common/PageDocument.h"

namespace platform {
namespace {

constexpr const char* kSourceLost = "the browser does not hand out the page's source";

} // namespace

void PageLoads::Begin(const std::string& frame, const std::string& loader, const std::string& url) {
    if (loader.empty() || frame.empty() || m_loads.contains(loader)) return;
    if (IsTop(frame) && m_client) {
        if (m_isClientDue) BeginClients(loader);
        return;
    }
    // What frames hold beside pages (empty documents, inline ones) is part of the page; those of a
    // page that is being left are not waited for.
    const bool isPage = IsHttpUrl(url) || SchemeOf(url) == "file";
    if (!IsTop(frame) && (!isPage || m_client || Top().next)) return;
    BeginPages(frame, loader, url);
}

void PageLoads::BeginClients(const std::string& loader) {
    const DocumentLoadPtr load = std::exchange(m_client, nullptr);
    load->SetLoader(loader);
    m_override.SetLoader(loader);
    m_loads[loader] = load;
    Top().next = load;
    m_traffic.ForgetRequests();
}

// The page itself, or its user, goes on to another document.
void PageLoads::BeginPages(const std::string& frame, const std::string& loader,
                           const std::string& url) {
    const auto load = std::make_shared<DocumentLoad>(frame);
    load->SetLoader(loader);
    load->url = ShownUrl(url);
    load->request.target.url = load->url;
    m_loads[loader] = load;
    Frame& place = m_frames[frame];
    place.isLeaving = false;
    place.next = load;
    if (IsTop(frame)) m_traffic.ForgetRequests();
    const DocumentLoadPtr left = place.current;
    BrowserObject& face = Face(*load);
    face.SetDocument(nullptr);
    face.SetStatusText({});
    face.SetReplyStatus(0);
    face.SetReadyState(READYSTATE_LOADING);
    face.SetBusy(true);
    const bool isWanted = RaiseBeforeNavigate2(Browser().Events(), face.Dispatch(), load->request);
    if (IsOver(load)) return;
    if (!isWanted) {
        m_page.Send("Page.stopLoading");
        return Cancel(load);
    }
    if (left) Supersede(left);
}

void PageLoads::TakeHead(const DocumentLoadPtr& load, const std::string& session) {
    load->hasHead = true;
    const auto source = load->source;
    load->document = CComPtr<IDispatch>(MakeObject<PageDocument>(source->Body()));
    if (IsTop(load->frame)) m_override.Finish();
    source->Begin(m_page, session, [weak = weak_from_this(), weakLoad = std::weak_ptr(load)] {
        const auto self = weak.lock();
        const auto changed = weakLoad.lock();
        if (self && changed) self->OnSourceChanged(changed);
    });
    BrowserObject& face = Face(*load);
    face.SetLocation(load->url);
    face.SetDocument(load->document);
    face.SetReadyState(READYSTATE_LOADED);
    RaiseNavigateComplete2(Browser().Events(), face.Dispatch(), load->url);
}

void PageLoads::OnSourceChanged(const DocumentLoadPtr& load) {
    if (IsOver(load)) return;
    if (load->source->IsLost() && !load->isSuperseded)
        return Fail(load, kSourceLost, Aftermath::errorPage);
    CheckSize(load);
    if (IsOver(load)) return;
    BrowserObject& face = Face(*load);
    const bool isReadable = load->source->IsReadable() && IsShown(load) && !load->isSuperseded;
    if (isReadable && face.ReadyState() == READYSTATE_LOADED)
        face.SetReadyState(READYSTATE_INTERACTIVE);
    CompleteIfReady(load);
    CheckOpened();
}

void PageLoads::Commit(const DocumentLoadPtr& load) {
    Frame& frame = m_frames[load->frame];
    if (IsTop(load->frame)) m_traffic.ForgetBytes();
    if (frame.next == load) frame.next.reset();
    const DocumentLoadPtr left = std::exchange(frame.current, load);
    if (left && left != load) {
        if (IsTop(load->frame)) DropFrames();
        // Until now late news of them must not be taken for something new.
        std::erase_if(m_loads, [](const auto& entry) { return entry.second->isDone; });
        if (IsOver(load)) return;
        Supersede(left);
        if (!IsOver(left)) left->source->OnFinished();
        if (IsOver(load)) return;
    }
    if (!load->hasHead) { // no request: an empty document
        load->source->BeEmpty();
        TakeHead(load, {});
        if (IsOver(load)) return;
    }
    CompleteIfReady(load);
}

void PageLoads::LoadEnded(const DocumentLoadPtr& load) {
    load->isLoaded = true;
    load->source->OnFinished();
    CompleteIfReady(load);
}

void PageLoads::Supersede(const DocumentLoadPtr& load) {
    load->isSuperseded = true;
    CompleteIfReady(load);
}

void PageLoads::CompleteIfReady(const DocumentLoadPtr& load) {
    if (IsOver(load)) return;
    const Frame& frame = m_frames[load->frame];
    if (load->isSuperseded) {
        if (load->source->IsLost()) load->document.Release();
        if (load->source->IsSettled() || !load->hasHead) Complete(load);
        return;
    }
    if (load->isLoaded && load->source->IsSettled() && frame.current == load && !frame.next &&
        !frame.isLeaving && AreFramesDone(load->frame)) {
        // The browser does not always say that a reply has broken off.
        if (load->source->Body()->Size() < load->announcedBytes)
            return Fail(load, kBrokenOff, Aftermath::errorPage);
        Complete(load);
    }
}

bool PageLoads::AreFramesDone(const std::string& parent) const {
    return std::all_of(m_frames.begin(), m_frames.end(), [&](const auto& entry) {
        const Frame& frame = entry.second;
        if (frame.parent != parent || entry.first == parent) return true;
        const bool isDone =
            (!frame.next || frame.next->isDone) && (!frame.current || frame.current->isDone);
        return isDone && AreFramesDone(entry.first);
    });
}

void PageLoads::Complete(const DocumentLoadPtr& load) {
    load->isDone = true;
    if (!load->isSuperseded) {
        Face(*load).SetReadyState(READYSTATE_COMPLETE);
        Face(*load).SetBusy(false);
    }
    RaiseComplete(load);
    if (!m_isDetached) End(load);
}

// Sinks read the document from the frame's browser, which may be on its way to the next one.
void PageLoads::RaiseComplete(const DocumentLoadPtr& load) {
    BrowserObject& face = Face(*load);
    if (!load->isSuperseded)
        return RaiseDocumentComplete(Browser().Events(), face.Dispatch(), load->url);
    face.SetDocument(load->document);
    RaiseDocumentComplete(Browser().Events(), face.Dispatch(), load->url);
    if (m_isDetached) return;
    const Frame& frame = m_frames[load->frame];
    const DocumentLoadPtr after = frame.next ? frame.next : frame.current;
    face.SetDocument(after && after != load ? after->document : nullptr);
}

void PageLoads::Fail(const DocumentLoadPtr& load, const std::string& reason, Aftermath aftermath) {
    if (IsOver(load)) return;
    load->isDone = true;
    if (m_client == load) m_client.reset();
    if (load->isByClient) m_override.Disarm();
    const bool isShown = IsShown(load);
    if (isShown) ShowFailure(load, reason);
    if (m_isDetached) return;
    RaiseDocumentComplete(Browser().Events(), Face(*load).Dispatch(), load->url);
    if (m_isDetached) return;
    if (isShown && aftermath == Aftermath::pageStays) StayOnPage(load);
    End(load);
}

void PageLoads::ShowFailure(const DocumentLoadPtr& load, const std::string& reason) {
    ReportDiagnostic(Severity::failure, UrlForLog(load->url) + ": " + reason.c_str());
    BrowserObject& face = Face(*load);
    face.SetDocument(nullptr);
    face.SetStatusText(reason);
    face.SetLocation(load->url);
    // Sinks count navigations and documents, so both events come, whatever happened.
    if (!load->hasHead) RaiseNavigateComplete2(Browser().Events(), face.Dispatch(), load->url);
    if (m_isDetached || !IsShown(load)) return;
    face.SetReadyState(READYSTATE_COMPLETE);
    face.SetBusy(false);
}

// A sink does not want it: nothing more is heard of it.
void PageLoads::Cancel(const DocumentLoadPtr& load) {
    load->isDone = true;
    if (m_client == load) m_client.reset();
    BrowserObject& face = Face(*load);
    face.SetStatusText("cancelled");
    face.SetReadyState(READYSTATE_COMPLETE);
    face.SetBusy(false);
    StayOnPage(load);
    End(load);
}

// The page asked for something that is not shown; what was shown before still is.
void PageLoads::StayOnPage(const DocumentLoadPtr& failed) {
    Frame& frame = m_frames[failed->frame];
    if (failed->isByClient || frame.next != failed) return;
    frame.next.reset();
    if (!frame.current || !frame.current->document) return;
    BrowserObject& face = Face(*frame.current);
    face.SetDocument(frame.current->document);
    face.SetLocation(frame.current->url);
}

void PageLoads::CheckSize(const DocumentLoadPtr& load) {
    if (load->source->ReceivedBytes() > kMaxPageBytes) GiveUp(load, PageTooLargeText());
}

// A frame that is too large fails alone, but the browser can only be told to stop the whole page.
void PageLoads::GiveUp(const DocumentLoadPtr& load, const std::string& reason) {
    if (IsOver(load)) return;
    m_page.Send("Page.stopLoading");
    load->source->Discard();
    Fail(load, reason, Aftermath::errorPage);
}

void PageLoads::End(const DocumentLoadPtr& load) {
    if (IsTop(load->frame)) return;
    if (const DocumentLoadPtr outer = Enclosing(m_frames[load->frame].parent))
        CompleteIfReady(outer);
}

// The document around: frames that scripts write have none that is waited for.
DocumentLoadPtr PageLoads::Enclosing(const std::string& frame) const {
    const auto found = m_frames.find(frame);
    if (found == m_frames.end()) return nullptr;
    if (found->second.current || IsTop(frame)) return found->second.current;
    return Enclosing(found->second.parent);
}

void PageLoads::DropFrames() {
    std::vector<std::string> inner;
    for (const auto& [id, frame] : m_frames)
        if (!IsTop(id)) inner.push_back(id);
    for (const std::string& id : inner)
        if (!m_isDetached) DropFrame(id);
}

void PageLoads::DropFrame(const std::string& id) {
    const auto found = m_frames.find(id);
    if (found == m_frames.end() || IsTop(id)) return;
    for (const DocumentLoadPtr& load : {found->second.next, found->second.current}) {
        if (!load || IsOver(load)) continue;
        load->isDone = true;
        RaiseDocumentComplete(Browser().Events(), Face(*load).Dispatch(), load->url);
        if (m_isDetached) return;
    }
    const auto still = m_frames.find(id);
    if (still == m_frames.end()) return;
    for (const DocumentLoadPtr& load : {still->second.next, still->second.current})
        if (load) m_loads.erase(load->loader);
    const std::string parent = still->second.parent;
    m_frames.erase(still);
    if (const DocumentLoadPtr outer = Enclosing(parent)) CompleteIfReady(outer);
}

} // namespace platform
