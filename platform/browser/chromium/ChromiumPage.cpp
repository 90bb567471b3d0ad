#include "browser/chromium/ChromiumPage.h"

#include "browser/chromium/ChromiumApplication.h"
#include "browser/chromium/ChromiumBrowser.h"
#include "browser/chromium/PageLoads.h"

namespace platform {
namespace {

// What the browser keeps of documents' bytes: the largest one, and all of them.
constexpr int kMaxDocumentBytes = 128 * 1024 * 1024;
constexpr int kMaxKeptBytes = 256 * 1024 * 1024;

// A worker that is not attached to is held up for ever, once frames are.
Json AutoAttach() {
    return {{"autoAttach", true},
            {"waitForDebuggerOnStart", true},
            {"flatten", true},
            {"filter", Json::array({{{"type", "iframe"}}, {{"type", "worker"}}})}};
}

} // namespace

ChromiumPage::ChromiumPage(std::shared_ptr<ChromiumApplication> application,
                           ChromiumBrowser& browser)
    : m_application(std::move(application)), m_browser(&browser),
      m_loads(std::make_shared<PageLoads>(*this)) {}

ChromiumPage::~ChromiumPage() = default;

void ChromiumPage::Send(const char* pszMethod, Json params, ReplyHandler onReply) {
    if (IsAttached()) return SendTo(m_session, pszMethod, std::move(params), std::move(onReply));
    m_waiting.push_back({pszMethod, std::move(params), std::move(onReply)});
}

void ChromiumPage::SendTo(const std::string& session, const char* pszMethod, Json params,
                          ReplyHandler onReply) {
    if (!onReply) return m_application->Connection().Send(session, pszMethod, std::move(params));
    m_application->Connection().Send(
        session, pszMethod, std::move(params),
        [weak = weak_from_this(), onReply = std::move(onReply)](DevToolsReply& reply) {
            const auto self = weak.lock();
            if (!self || !self->m_browser) return;
            const CComPtr<ChromiumBrowser> keep(self->m_browser);
            onReply(reply);
        });
}

void ChromiumPage::Attach(const std::string& target, const std::string& session) {
    m_target = target;
    m_session = session;
    Enable(session);
    for (Waiting& waiting : std::exchange(m_waiting, {}))
        Send(waiting.pszMethod, std::move(waiting.params), std::move(waiting.onReply));
}

// Sent in one go: commands are not answered while the page waits for its release.
void ChromiumPage::Enable(const std::string& session) {
    SendTo(session, "Page.enable", Json::object());
    SendTo(session, "Inspector.enable", Json::object());
    SendTo(session, "Network.enable",
           {{"enableDurableMessages", true},
            {"maxTotalBufferSize", kMaxKeptBytes},
            {"maxResourceBufferSize", kMaxDocumentBytes}});
    SendTo(session, "Target.setAutoAttach", AutoAttach());
    if (m_browser && m_browser->IsOffline()) m_loads->SetOffline(true);
    SendTo(session, "Runtime.runIfWaitingForDebugger", Json::object(),
           [this](DevToolsReply&) { m_isReady = true; });
}

void ChromiumPage::OnEvent(DevToolsEvent& event) {
    if (!m_browser) return;
    const auto keep = shared_from_this();
    const CComPtr<ChromiumBrowser> keepBrowser(m_browser);
    if (OnTargetEvent(event) || OnDialogEvent(event)) return;
    m_loads->OnEvent(event);
}

bool ChromiumPage::OnTargetEvent(const DevToolsEvent& event) {
    if (event.method == "Target.attachedToTarget") {
        OnAttached(event.session, event.params);
    } else if (event.method == "Target.detachedFromTarget") {
        const std::string session = TextOf(event.params, "sessionId");
        m_frameSessions.erase(session);
        m_application->RemoveSession(session);
    } else if (event.method == "Inspector.targetCrashed") {
        m_loads->OnCrash();
    } else {
        return false;
    }
    return true;
}

void ChromiumPage::OnAttached(const std::string& parent, const Json& params) {
    if (TextOf(ObjectOf(params, "targetInfo"), "type") != "worker")
        return AttachFrameSession(params);
    const std::string session = TextOf(params, "sessionId");
    SendTo(session, "Runtime.runIfWaitingForDebugger", Json::object());
    SendTo(parent, "Target.detachFromTarget", {{"sessionId", session}});
}

void ChromiumPage::AttachFrameSession(const Json& params) {
    const std::string session = TextOf(params, "sessionId");
    m_frameSessions.insert(session);
    m_application->AddSession(session, shared_from_this());
    Enable(session);
}

bool ChromiumPage::OnDialogEvent(const DevToolsEvent& event) {
    if (event.method == "Page.javascriptDialogOpening")
        m_browser->OnDialogOpened(event.params);
    else if (event.method == "Page.javascriptDialogClosed")
        m_browser->OnDialogClosed();
    else
        return false;
    return true;
}

void ChromiumPage::OnTargetGone() {
    if (!m_browser) return;
    const CComPtr<ChromiumBrowser> keep(m_browser);
    m_browser->OnTargetGone();
}

void ChromiumPage::Detach() {
    m_loads->Detach();
    m_browser = nullptr;
    m_application->RemoveSession(m_session);
    for (const std::string& session : m_frameSessions)
        m_application->RemoveSession(session);
}

} // namespace platform
