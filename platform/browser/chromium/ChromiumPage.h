// One page (a target) of a Chromium application: its sessions, its commands, its events.
#pragma once

#include <memory>
#include <set>
#include <string>
#include <vector>

#include "browser/chromium/DevToolsConnection.h"
#include "browser/chromium/DevToolsValues.h"

namespace platform {

class ChromiumApplication;
class ChromiumBrowser;
class PageLoads;

// On the owner's thread. Belongs to one browser object; the application knows it weakly.
class ChromiumPage : public std::enable_shared_from_this<ChromiumPage> {
public:
    using ReplyHandler = DevToolsConnection::ReplyHandler;

    ChromiumPage(std::shared_ptr<ChromiumApplication> application, ChromiumBrowser& browser);
    ~ChromiumPage();

    ChromiumApplication& Application() const { return *m_application; }
    // Null once the browser object has gone.
    ChromiumBrowser* Browser() const { return m_browser; }
    PageLoads& Loads() const { return *m_loads; }
    const std::string& Target() const { return m_target; }
    const std::string& Session() const { return m_session; }
    bool IsAttached() const { return !m_session.empty(); }
    // Its renderer reports what happens. What is loaded earlier may go by unreported.
    bool IsReady() const { return m_isReady; }

    // To the page's main session; what is sent before there is one waits for it. Handlers run only
    // while the browser object lives.
    void Send(const char* pszMethod, Json params = Json::object(), ReplyHandler onReply = {});
    void SendTo(const std::string& session, const char* pszMethod, Json params,
                ReplyHandler onReply = {});

    // From the application.
    void Attach(const std::string& target, const std::string& session);
    void OnEvent(DevToolsEvent& event);
    void OnTargetGone();

    // The browser object goes; nothing reaches it from here any more.
    void Detach();

private:
    struct Waiting {
        const char* pszMethod;
        Json params;
        ReplyHandler onReply;
    };

    void Enable(const std::string& session);
    bool OnTargetEvent(const DevToolsEvent& event);
    bool OnDialogEvent(const DevToolsEvent& event);
    void OnAttached(const std::string& parent, const Json& params);
    void AttachFrameSession(const Json& params);

    const std::shared_ptr<ChromiumApplication> m_application;
    ChromiumBrowser* m_browser;
    const std::shared_ptr<PageLoads> m_loads;
    std::string m_target;
    std::string m_session;
    std::set<std::string> m_frameSessions; // of frames that live in processes of their own
    std::vector<Waiting> m_waiting;
    bool m_isReady = false;
};

} // namespace platform
