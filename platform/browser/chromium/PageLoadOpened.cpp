// What a page loads: documents that scripts have opened (document.open) and that nobody may ever
// close. They ask nothing of the network, but neither their frames nor the page have a load event.
#include <algorithm>
#include <vector>

#include "browser/chromium/ChromiumPage.h"
#include "browser/chromium/PageLoads.h"

namespace platform {

void PageLoads::OnDocumentOpened(const DevToolsEvent& event) {
    Frame& frame = m_frames[TextOf(ObjectOf(event.params, "frame"), "id")];
    frame.isOpened = true;
    m_hasOpened = true;
    frame.session = event.session;
}

// The document of the frame, or of one within it, is open.
bool PageLoads::WaitsForOpened(const std::string& frame) const {
    const auto found = m_frames.find(frame);
    if (found != m_frames.end() && found->second.isOpened) return true;
    return std::any_of(m_frames.begin(), m_frames.end(), [&](const auto& entry) {
        return entry.first != frame && entry.second.parent == frame && WaitsForOpened(entry.first);
    });
}

// For a document that is there now: of those that have gone the end may go by unreported.
bool PageLoads::IsLoading(const PageTraffic::Request& request) const {
    const auto found = m_frames.find(request.frame);
    if (found == m_frames.end()) return false;
    const DocumentLoadPtr& shown = found->second.current;
    return !shown || shown->loader == request.loader;
}

// Every document has been received, and none of them waits for more than that.
bool PageLoads::IsAllElseQuiet() const {
    const auto& requests = m_traffic.UnderWay();
    const bool isLoading = std::any_of(requests.begin(), requests.end(),
                                       [&](const auto& entry) { return IsLoading(entry.second); });
    if (m_client || isLoading) return false;
    return std::all_of(m_frames.begin(), m_frames.end(), [](const auto& entry) {
        const Frame& frame = entry.second;
        const bool isReceived =
            !frame.current || frame.current->isDone || frame.current->source->IsSettled();
        return isReceived && (!frame.next || frame.next->isDone) && !frame.isLeaving;
    });
}

FrameProbe::Questions PageLoads::QuestionsAboutOpened() const {
    FrameProbe::Questions questions;
    for (const auto& [id, frame] : m_frames) {
        if (!frame.isOpened && (!frame.current || frame.current->isDone)) continue;
        const std::string& session = frame.session.empty() ? m_page.Session() : frame.session;
        questions[id] = {session, frame.isOpened};
    }
    return questions;
}

void PageLoads::CheckOpened() {
    if (!m_hasOpened || m_isDetached || m_probe) return;
    const DocumentLoadPtr page = Top().current;
    if (!page || IsOver(page) || !WaitsForOpened(page->frame) || !IsAllElseQuiet()) return;
    m_probe = std::make_shared<FrameProbe>();
    const std::weak_ptr<FrameProbe> weak = m_probe;
    m_probe->Ask(m_page, QuestionsAboutOpened(),
                 [this, weak, begun = m_traffic.Begun()](const FrameProbe::Answers& answers) {
                     const auto probe = weak.lock();
                     if (!probe || m_probe != probe) return;
                     m_probe.reset();
                     if (m_traffic.Begun() != begun) return CheckOpened();
                     OnProbed(answers);
                 });
}

void PageLoads::OnProbed(const FrameProbe::Answers& answers) {
    for (const auto& [id, state] : answers) {
        Frame& frame = m_frames[id];
        if (!frame.isOpened && state.empty()) return;   // it has gone
        if (state != "loading") frame.isOpened = false; // closed: its load event is due
    }
    CompleteOpened();
}

void PageLoads::CompleteOpened() {
    std::vector<DocumentLoadPtr> waiting;
    for (const auto& [id, frame] : m_frames)
        if (frame.current && !frame.current->isDone && WaitsForOpened(id))
            waiting.push_back(frame.current);
    for (const DocumentLoadPtr& load : waiting)
        load->isLoaded = true;
    for (const DocumentLoadPtr& load : waiting)
        CompleteIfReady(load);
}

} // namespace platform
