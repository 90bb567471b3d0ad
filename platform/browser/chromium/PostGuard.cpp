#include "browser/chromium/PostGuard.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <utility>

#include <platform/Diagnostics.h>

#include "browser/chromium/NetErrors.h"
#include "browser/common/PageUrl.h"

namespace platform {
namespace {

using namespace std::chrono_literals;

// Numbers of calls that are the guard's, far from its owner's.
constexpr int kFirstCall = 1 << 30;
// For what a page that is left has under way: it may be on its way to a connection still.
constexpr auto kLeavePatience = 250ms;
// For other requests of the page, which a frame's post data would otherwise end.
constexpr auto kQuietPatience = 1s;

// What may carry post data, and what the browser asks for by itself.
constexpr std::array kTypes{"Document", "XHR", "Fetch", "Ping", "Other"};

bool IsSafe(std::string_view method) {
    return method == "GET" || method == "HEAD" || method == "OPTIONS" || method == "TRACE";
}

} // namespace

PostGuard::PostGuard(Write write, bool isRepeatAllowed)
    : m_write(std::move(write)), m_isRepeatAllowed(isRepeatAllowed), m_lastCall(kFirstCall),
      m_closer([this](const std::string& session, const char* pszMethod, Json params) {
          return Send(session, pszMethod, std::move(params));
      }) {}

int PostGuard::Send(const std::string& session, const char* pszMethod, Json params) {
    Json message{{"id", ++m_lastCall}, {"method", pszMethod}};
    message["params"] = std::move(params);
    if (!session.empty()) message["sessionId"] = session;
    m_write(message.dump());
    return m_lastCall;
}

void PostGuard::Watch(const std::string& context) {
    const std::lock_guard lock(m_mutex);
    m_closer.SetContext(context);
    HoldUp(Requests::ofSomeTypes);
}

void PostGuard::HoldUp(Requests requests) {
    if (std::exchange(m_heldUp, requests) == requests) return;
    Json patterns = Json::array();
    if (requests == Requests::all) patterns.push_back({{"requestStage", "Request"}});
    for (const char* pszType : kTypes)
        if (requests == Requests::ofSomeTypes)
            patterns.push_back({{"resourceType", pszType}, {"requestStage", "Request"}});
    Send({}, "Fetch.enable", {{"patterns", std::move(patterns)}});
}

void PostGuard::Release() {
    const std::lock_guard lock(m_mutex);
    Send({}, "Fetch.disable", Json::object());
    m_closer.RemovePage();
}

void PostGuard::Probe() {
    const std::lock_guard lock(m_mutex);
    if (m_ability == Ability::unknown && !m_isClosing) Close(ConnectionCloser::Which::idle);
}

bool PostGuard::Take(const Json& message) {
    const std::lock_guard lock(m_mutex);
    if (const Json* id = FindValue(message, "id")) {
        const bool isOwn = id->get<int>() > kFirstCall;
        if (isOwn) m_closer.OnReply(id->get<int>(), message);
        return isOwn;
    }
    if (m_closer.TakeEvent(message)) return true;
    const bool isOfBrowser = TextOf(message, "sessionId").empty();
    if (isOfBrowser && TextOf(message, "method") == "Fetch.requestPaused") {
        OnPaused(ObjectOf(message, "params"));
        return true;
    }
    if (TextOf(message, "method") == "Fetch.requestPaused")
        m_ofOwner = TextOf(ObjectOf(message, "params"), "networkId");
    m_activity.Note(message);
    Prepare();
    return false;
}

void PostGuard::OnPaused(const Json& params) {
    const std::string request = TextOf(params, "requestId");
    const std::string network = TextOf(params, "networkId");
    const Json& asked = ObjectOf(params, "request");
    const bool isNetwork = IsHttpUrl(TextOf(asked, "url"));
    if (!isNetwork || (IsSafe(TextOf(asked, "method")) && m_posts.empty()))
        return Continue(request);
    if (!network.empty()) m_paused.insert(network);
    if (IsSafe(TextOf(asked, "method"))) return m_held.push_back(request);
    Post post{request,
              network,
              {},
              TextOf(params, "resourceType") == "Document",
              std::chrono::steady_clock::now()};
    const std::string frame = TextOf(params, "frameId");
    if (post.isNavigation && m_activity.IsPage(frame)) post.page = frame;
    // The client's: its page was stopped before, and what that had begun is known by now.
    post.isSettled = network == m_ofOwner && m_activity.IsQuietBeside({}, m_paused);
    // What begins from now on would leave connections behind.
    if (m_ability != Ability::maybeTwice) HoldUp(Requests::all);
    m_posts.push_back(std::move(post));
    Prepare();
}

// Closing all ends requests that wait for a connection or share one; a page that is left ends what
// it has under way anyhow. A navigation waits a while for them; a script does not. What began just
// ahead of it is not known at once, so that the first answer is never the last one.
std::optional<ConnectionCloser::Which> PostGuard::WhatToClose(const Post& post) const {
    using Which = ConnectionCloser::Which;
    if (!post.isSettled) return Which::idle;
    const auto waited = std::chrono::steady_clock::now() - post.begin;
    const bool isQuiet = m_activity.IsQuietBeside(post.page, m_paused);
    if (isQuiet && m_activity.IsQuietBeside({}, m_paused)) return Which::all;
    if (post.isNavigation && waited < (isQuiet ? kLeavePatience : kQuietPatience))
        return std::nullopt;
    return isQuiet ? Which::all : Which::idle;
}

// The first request that may go on.
void PostGuard::Prepare() {
    if (m_isClosing || m_posts.empty()) return;
    if (m_ability == Ability::maybeTwice) return OnClosed(ConnectionCloser::Outcome::impossible);
    for (auto post = m_posts.begin(); post != m_posts.end(); ++post) {
        const auto which = WhatToClose(*post);
        if (!which) continue;
        std::rotate(m_posts.begin(), post, std::next(post));
        return Close(*which);
    }
}

void PostGuard::Close(ConnectionCloser::Which which) {
    m_isClosing = true;
    m_closer.Close(which, [this](ConnectionCloser::Outcome outcome) { OnClosed(outcome); });
}

void PostGuard::OnClosed(ConnectionCloser::Outcome outcome) {
    m_isClosing = false;
    if (outcome != ConnectionCloser::Outcome::failed)
        m_ability =
            outcome == ConnectionCloser::Outcome::closed ? Ability::once : Ability::maybeTwice;
    if (m_posts.empty()) return;
    if (outcome == ConnectionCloser::Outcome::closed && !m_posts.front().isSettled) {
        m_posts.front().isSettled = true;
        return Prepare();
    }
    const Post post = std::move(m_posts.front());
    m_posts.pop_front();
    m_paused.erase(post.network);
    LetGo(post, outcome);
    if (m_posts.empty()) return ContinueHeld();
    Prepare();
}

void PostGuard::LetGo(const Post& post, ConnectionCloser::Outcome outcome) {
    if (outcome == ConnectionCloser::Outcome::closed) return Continue(post.request);
    if (outcome == ConnectionCloser::Outcome::failed) return Refuse(post.request, kConnectionsStay);
    if (m_isRepeatAllowed) return Continue(post.request);
    Refuse(post.request, kMaySendTwice);
}

void PostGuard::Continue(const std::string& request) {
    Send({}, "Fetch.continueRequest", {{"requestId", request}});
}

// NetErrorText knows the texts again by the browser's names for them.
void PostGuard::Refuse(const std::string& request, const char* pszReason) {
    const bool isBlocked = std::string_view(pszReason) == kMaySendTwice;
    Send({}, "Fetch.failRequest",
         {{"requestId", request}, {"errorReason", isBlocked ? "BlockedByClient" : "AccessDenied"}});
    ReportDiagnostic(Severity::failure, CString(std::string("post data not sent: ") + pszReason));
}

void PostGuard::ContinueHeld() {
    HoldUp(Requests::ofSomeTypes);
    for (const std::string& request : std::exchange(m_held, {}))
        Continue(request);
    m_paused.clear();
}

PipeFilter::Time PostGuard::NextTimeOf(const Post& post) {
    const Time leave = post.begin + kLeavePatience;
    return std::chrono::steady_clock::now() < leave ? leave : post.begin + kQuietPatience;
}

PipeFilter::Time PostGuard::NextTime() const {
    const std::lock_guard lock(m_mutex);
    if (m_isClosing) return m_closer.Deadline();
    Time next = Time::max();
    for (const Post& post : m_posts)
        next = std::min(next, NextTimeOf(post));
    return next;
}

void PostGuard::OnTime() {
    const std::lock_guard lock(m_mutex);
    if (m_isClosing)
        m_closer.GiveUp();
    else
        Prepare();
}

} // namespace platform
