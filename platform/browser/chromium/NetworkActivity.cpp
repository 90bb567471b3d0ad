#include "browser/chromium/NetworkActivity.h"

#include <algorithm>

#include "browser/common/PageUrl.h"

namespace platform {

void NetworkActivity::Note(const Json& event) {
    const std::string method = TextOf(event, "method");
    const std::string name = TextOf(event, "sessionId");
    const Json& params = ObjectOf(event, "params");
    if (method == "Target.attachedToTarget") return OnAttached(name, params);
    if (method == "Target.detachedFromTarget") {
        m_sessions.erase(TextOf(params, "sessionId"));
        return;
    }
    const auto found = m_sessions.find(name);
    if (found == m_sessions.end()) return;
    Session& session = found->second;
    if (method == "Network.requestWillBeSent") {
        if (IsHttpUrl(TextOf(ObjectOf(params, "request"), "url")))
            session.requests.insert(TextOf(params, "requestId"));
    } else if (method == "Network.loadingFinished" || method == "Network.loadingFailed") {
        session.requests.erase(TextOf(params, "requestId"));
    } else if (method == "Page.frameNavigated") {
        OnNavigated(session, ObjectOf(params, "frame"));
    } else if (method == "Inspector.targetCrashed") {
        session.requests.clear();
    }
}

void NetworkActivity::OnAttached(const std::string& parent, const Json& params) {
    const auto outer = m_sessions.find(parent);
    const std::string target = TextOf(ObjectOf(params, "targetInfo"), "targetId");
    m_sessions[TextOf(params, "sessionId")].page =
        outer == m_sessions.end() ? target : outer->second.page;
}

// What the page before it had under way has ended with it.
void NetworkActivity::OnNavigated(Session& session, const Json& frame) {
    if (!TextOf(frame, "parentId").empty()) return;
    const std::string document = TextOf(frame, "loaderId");
    std::erase_if(session.requests, [&](const std::string& one) { return one != document; });
}

bool NetworkActivity::IsPage(const std::string& frame) const {
    return std::any_of(m_sessions.begin(), m_sessions.end(),
                       [&](const auto& entry) { return entry.second.page == frame; });
}

bool NetworkActivity::IsQuietBeside(const std::string& page,
                                    const std::set<std::string>& requests) const {
    return std::all_of(m_sessions.begin(), m_sessions.end(), [&](const auto& entry) {
        const Session& session = entry.second;
        return session.page == page ||
               std::includes(requests.begin(), requests.end(), session.requests.begin(),
                             session.requests.end());
    });
}

} // namespace platform
