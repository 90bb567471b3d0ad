#include "browser/chromium/ChromiumApplication.h"

#include <platform/CodePage.h>
#include <platform/Diagnostics.h>

#include "browser/chromium/Base64.h"
#include "browser/chromium/ChromiumBrowser.h"
#include "browser/chromium/KeptApplications.h"
#include "browser/chromium/PostGuard.h"
#include "browser/common/NavigationRequest.h"

namespace platform {
namespace {

using namespace std::chrono_literals;

// Until Chromium answers and has a page: a start takes half a second, on a busy machine several.
// From the page to its window on the display.
constexpr auto kWindowPatience = 10s;

std::string StartFailure(DevToolsConnection& connection, const std::string& reason) {
    const std::string output = connection.ErrorOutput();
    return output.empty() ? reason : reason + "; its last output: " + output;
}

// failure: the error of a reply; empty when none came or it was none.
std::string ReasonOf(const std::string& failure) {
    if (failure == kBrowserGone) return "Chromium ended at once";
    if (failure.empty() || failure == kCallTimedOut) return "Chromium does not answer";
    return "Chromium: " + failure;
}

} // namespace

std::shared_ptr<ChromiumApplication>
ChromiumApplication::Start(Windows windows, std::string& error,
                           std::chrono::milliseconds patience) {
    const std::shared_ptr<ChromiumApplication> application(new ChromiumApplication);
    application->m_patience = patience;
    if (windows == Windows::onDisplay) application->m_display = Display::Open();
    std::optional<std::string> display;
    if (application->m_display) display = application->m_display->Name();
    application->m_process = ChromiumProcess::Launch(display, error);
    if (!application->m_process) return nullptr;
    if (application->m_display)
        application->m_watch =
            application->m_display->Watch(application->m_process->WindowInstance());
    return application->Greet(error) ? application : nullptr;
}

ChromiumApplication::~ChromiumApplication() {
    if (m_process && !m_hasKeptPages) m_process->Quit();
    if (m_process && m_hasKeptPages) KeptApplications::Get().Keep(std::move(m_process));
}

bool ChromiumApplication::Greet(std::string& error) {
    DevToolsConnection& connection = m_process->Connection();
    connection.SetEventHandler([weak = weak_from_this()](DevToolsEvent& event) {
        if (const auto self = weak.lock()) self->OnEvent(event);
    });
    connection.SetEndHandler([weak = weak_from_this()] {
        if (const auto self = weak.lock()) self->OnEnd();
    });
    connection.Send({}, "Target.setAutoAttach",
                    {{"autoAttach", true},
                     {"waitForDebuggerOnStart", true},
                     {"flatten", true},
                     {"filter", Json::array({{{"type", "page"}}})}});
    std::string failure;
    bool isAnswered = false;
    connection.Send(
        {}, "Target.createBrowserContext", {{"disposeOnDetach", true}},
        [&](DevToolsReply& reply) {
            m_context = TextOf(reply.result, "browserContextId");
            failure = reply.error;
            isAnswered = true;
        },
        m_patience);
    WaitFor([&] { return isAnswered; });
    if (!m_context.empty()) {
        connection.Posts().Watch(m_context);
        // Nothing that pages offer for download lands on the disk.
        connection.Send({}, "Browser.setDownloadBehavior",
                        {{"behavior", "deny"}, {"browserContextId", m_context}});
        return true;
    }
    error = StartFailure(connection, ReasonOf(failure));
    m_process->Quit();
    return false;
}

// Handlers of this object's own calls borrow the caller's locals: it must not return before they
// have run, and calls with a time-out always run theirs.
bool ChromiumApplication::WaitFor(const std::function<bool()>& isDone) {
    DevToolsConnection& connection = m_process->Connection();
    const auto end = std::chrono::steady_clock::now() + m_patience + 1s;
    while (!isDone() && std::chrono::steady_clock::now() < end) {
        connection.WaitForMessages(100ms);
        connection.Dispatch();
        if (!connection.IsOpen() && !connection.WaitForMessages(0ms)) break;
    }
    return isDone();
}

void ChromiumApplication::OpenPage(const std::shared_ptr<ChromiumPage>& page) {
    m_opening.push_back(page);
    Connection().Send(
        {}, "Target.createTarget",
        {{"url", "about:blank"}, {"browserContextId", m_context}, {"newWindow", true}});
}

bool ChromiumApplication::OpenPageNow(const std::shared_ptr<ChromiumPage>& page) {
    OpenPage(page);
    return WaitFor([&] { return page->IsReady(); });
}

std::string ChromiumApplication::UserAgent() {
    std::string userAgent;
    bool isAnswered = false;
    Connection().Send(
        {}, "Browser.getVersion", Json::object(),
        [&](DevToolsReply& reply) {
            userAgent = TextOf(reply.result, "userAgent");
            isAnswered = true;
        },
        m_patience);
    WaitFor([&] { return isAnswered; });
    return userAgent;
}

bool ChromiumApplication::SendsPostsOnce() {
    PostGuard& posts = Connection().Posts();
    posts.Probe();
    WaitFor([&] { return posts.WhatBrowserCan() != PostGuard::Ability::unknown; });
    return posts.WhatBrowserCan() == PostGuard::Ability::once;
}

void ChromiumApplication::Adopt(const std::shared_ptr<ChromiumPage>& page,
                                const std::string& target, const std::string& session) {
    m_targets[target] = page;
    AddSession(session, page);
    page->Attach(target, session);
}

void ChromiumApplication::Divert(const std::string& target, const std::string& session,
                                 CComPtr<IWebBrowser2> to) {
    m_diversions[session] = {target, std::move(to)};
    Connection().Send(session, "Fetch.enable",
                      {{"patterns", Json::array({{{"resourceType", "Document"}}})}});
    Connection().Send(session, "Runtime.runIfWaitingForDebugger", Json::object());
}

void ChromiumApplication::OnDiverted(const DevToolsEvent& event) {
    const auto found = m_diversions.find(event.session);
    if (found == m_diversions.end() || event.method != "Fetch.requestPaused") return;
    const Diversion diversion = found->second;
    m_diversions.erase(found);
    ClosePage(diversion.target);
    const Json& asked = ObjectOf(event.params, "request");
    NavigationRequest request;
    request.givenUrl = WideFromUtf8(TextOf(asked, "url"));
    for (const Json& part : asked.value("postDataEntries", Json::array()))
        request.body += DecodeBase64(TextOf(part, "bytes"));
    for (const char* name : {"Content-Type", "Referer"})
        if (const std::string value = TextOf(ObjectOf(asked, "headers"), name); !value.empty())
            request.headerBlock += std::string(name) + ": " + value + "\r\n";
    NavigateWith(*diversion.to, request);
}

void ChromiumApplication::ClosePage(const std::string& target) {
    m_targets.erase(target);
    if (!target.empty()) Connection().Send({}, "Target.closeTarget", {{"targetId", target}});
}

void ChromiumApplication::KeepPage(const std::string& target, const std::string& session) {
    m_targets.erase(target);
    if (target.empty()) return;
    m_hasKeptPages = true;
    Connection().Send({}, "Target.detachFromTarget", {{"sessionId", session}});
}

std::unique_ptr<BrowserWindow> ChromiumApplication::TakeWindow() {
    auto window = m_watch ? m_watch->TakeWindow(kWindowPatience) : nullptr;
    if (m_watch && !window)
        ReportDiagnostic(Severity::failure, "Chromium has opened no window on the display");
    return window ? std::move(window) : MakeRememberedWindow();
}

void ChromiumApplication::AddSession(const std::string& session,
                                     const std::shared_ptr<ChromiumPage>& page) {
    m_sessions[session] = page;
}

void ChromiumApplication::OnEvent(DevToolsEvent& event) {
    const auto keep = shared_from_this();
    if (!event.session.empty()) {
        const auto found = m_sessions.find(event.session);
        const auto page = found == m_sessions.end() ? nullptr : found->second.lock();
        if (page)
            page->OnEvent(event);
        else
            OnDiverted(event);
    } else if (event.method == "Target.attachedToTarget") {
        OnAttached(event.params);
    } else if (event.method == "Target.detachedFromTarget") {
        m_sessions.erase(TextOf(event.params, "sessionId"));
        OnTargetGone(TextOf(event.params, "targetId"));
    }
}

void ChromiumApplication::OnAttached(const Json& params) {
    const Json& target = ObjectOf(params, "targetInfo");
    const std::string session = TextOf(params, "sessionId");
    if (TextOf(target, "type") == "page")
        return OnPageOpened(TextOf(target, "targetId"), session, TextOf(target, "openerId"));
    // Whatever else starts (workers, the browser's own pages) is let go.
    Connection().Send(session, "Runtime.runIfWaitingForDebugger", Json::object());
    Connection().Send({}, "Target.detachFromTarget", {{"sessionId", session}});
}

void ChromiumApplication::OnPageOpened(const std::string& target, const std::string& session,
                                       const std::string& opener) {
    if (!opener.empty()) {
        const auto found = m_targets.find(opener);
        const auto page = found == m_targets.end() ? nullptr : found->second.lock();
        if (page && page->Browser()) return page->Browser()->OnPopUp(target, session);
        return ClosePage(target);
    }
    while (!m_opening.empty()) {
        const auto page = m_opening.front().lock();
        m_opening.pop_front();
        if (page && page->Browser()) return Adopt(page, target, session);
    }
    ClosePage(target); // its browser object has gone meanwhile
}

void ChromiumApplication::OnTargetGone(const std::string& target) {
    const auto found = m_targets.find(target);
    if (found == m_targets.end()) return;
    const auto page = found->second.lock();
    m_targets.erase(found);
    if (page) page->OnTargetGone();
}

void ChromiumApplication::OnEnd() {
    const auto keep = shared_from_this();
    const auto targets = std::exchange(m_targets, {});
    for (const auto& [target, weak] : targets)
        if (const auto page = weak.lock()) page->OnTargetGone();
}

} // namespace platform
