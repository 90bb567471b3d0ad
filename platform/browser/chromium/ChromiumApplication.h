// A running Chromium application: its process, its pages, and which event belongs to which page.
#pragma once

#include <chrono>
#include <deque>
#include <map>
#include <memory>
#include <string>

#include <platform/Browser.h>

#include "browser/chromium/ChromiumPage.h"
#include "browser/chromium/ChromiumProcess.h"
#include "window/BrowserWindow.h"

namespace platform {

// On the owner's thread. Shared by the browser objects of its pages; the first one starts it, the
// last one to go ends it, unless pages are kept open.
class ChromiumApplication : public std::enable_shared_from_this<ChromiumApplication> {
public:
    enum class Windows { onDisplay, none }; // onDisplay: where there is a display

    // Starts the process and waits until it answers, or for the patience. Null with the reason in
    // plain words.
    static std::shared_ptr<ChromiumApplication>
    Start(Windows windows, std::string& error,
          std::chrono::milliseconds patience = std::chrono::seconds(30));
    ~ChromiumApplication();

    DevToolsConnection& Connection() { return m_process->Connection(); }
    bool IsAlive() const { return m_process->Connection().IsOpen(); }
    bool HasDisplay() const { return m_watch != nullptr; }
    const CertificateProblem& Certificates() const { return m_process->Certificates(); }

    // Opens an empty page in a new window; it is attached as soon as the browser has made it.
    void OpenPage(const std::shared_ptr<ChromiumPage>& page);
    // As OpenPage, and waits for it, serving no messages. False when it does not come.
    bool OpenPageNow(const std::shared_ptr<ChromiumPage>& page);
    // Gives a page that the browser has opened by itself, and holds up, to a browser object.
    void Adopt(const std::shared_ptr<ChromiumPage>& page, const std::string& target,
               const std::string& session);
    // Has another browser make the request of a page that the browser has opened by itself, and
    // ends that page. Its link to the opener is lost.
    void Divert(const std::string& target, const std::string& session, CComPtr<IWebBrowser2> to);
    void ClosePage(const std::string& target);
    // What it calls itself in its requests. Waits for its answer; empty when there is none.
    std::string UserAgent();
    // Whether it can be kept from sending post data twice. Waits for its answer; it has to have a
    // page.
    bool SendsPostsOnce();
    // The page stays open without a browser object, until its user closes it or this process ends.
    void KeepPage(const std::string& target, const std::string& session);
    // The window that has appeared last, or one that is only remembered. Never null.
    std::unique_ptr<BrowserWindow> TakeWindow();

    void AddSession(const std::string& session, const std::shared_ptr<ChromiumPage>& page);
    void RemoveSession(const std::string& session) { m_sessions.erase(session); }

private:
    ChromiumApplication() = default;
    bool Greet(std::string& error);
    bool WaitFor(const std::function<bool()>& isDone);
    void OnEvent(DevToolsEvent& event);
    void OnAttached(const Json& params);
    void OnPageOpened(const std::string& target, const std::string& session,
                      const std::string& opener);
    void OnDiverted(const DevToolsEvent& event);
    void OnTargetGone(const std::string& target);
    void OnEnd();

    std::unique_ptr<WindowWatch> m_watch; // null: headless
    std::shared_ptr<Display> m_display;
    std::shared_ptr<ChromiumProcess> m_process;
    std::chrono::milliseconds m_patience{};
    std::string m_context;
    std::map<std::string, std::weak_ptr<ChromiumPage>> m_sessions;
    std::map<std::string, std::weak_ptr<ChromiumPage>> m_targets;
    std::deque<std::weak_ptr<ChromiumPage>> m_opening;
    struct Diversion {
        std::string target;
        CComPtr<IWebBrowser2> to;
    };
    std::map<std::string, Diversion> m_diversions; // by session
    bool m_hasKeptPages = false;
};

} // namespace platform
