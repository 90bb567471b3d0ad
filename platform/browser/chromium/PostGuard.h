// Lets post data out of the browser exactly once.
#pragma once

#include <atomic>
#include <deque>
#include <functional>
#include <mutex>
#include <set>
#include <string>
#include <vector>

#include "browser/chromium/ConnectionCloser.h"
#include "browser/chromium/NetworkActivity.h"
#include "browser/chromium/PipeFilter.h"

namespace platform {

// A browser sends a request a second time when its connection was open before (kept, or opened
// ahead) and breaks before a reply, whatever the request is. So each request that is not safe
// (RFC 9110, section 9.2.1), whoever makes it, is held up until such connections are closed; it
// then gets a new one, on which nothing is repeated. All other requests, which could leave a
// connection behind in between, wait meanwhile. While there is none that is not safe they pass,
// most of them without being held up at all.
class PostGuard final : public PipeFilter {
public:
    using Write = std::function<void(std::string message)>;
    enum class Ability { unknown, once, maybeTwice };

    // isRepeatAllowed: in a browser that cannot keep the promise, post data are sent all the same.
    PostGuard(Write write, bool isRepeatAllowed);

    // Any thread.

    // From now on, for the pages of this browser context.
    void Watch(const std::string& context);
    // No longer: nobody answers the browser from now on.
    void Release();
    // Has it found out what the browser can do.
    void Probe();
    Ability WhatBrowserCan() const { return m_ability; }

    // The pipe's thread.
    bool Take(const Json& message) override;
    Time NextTime() const override;
    void OnTime() override;

private:
    struct Post {
        std::string request; // what the pause is called
        std::string network; // what the request is called
        std::string page;    // the page that it replaces, if it does
        bool isNavigation = false;
        Time begin;
        bool isSettled = false; // connections were closed once, or nobody has used any of late
    };

    enum class Requests { none, ofSomeTypes, all };

    int Send(const std::string& session, const char* pszMethod, Json params);
    void HoldUp(Requests requests);
    void OnPaused(const Json& params);
    void Prepare();
    static Time NextTimeOf(const Post& post);
    std::optional<ConnectionCloser::Which> WhatToClose(const Post& post) const;
    void Close(ConnectionCloser::Which which);
    void OnClosed(ConnectionCloser::Outcome outcome);
    void LetGo(const Post& post, ConnectionCloser::Outcome outcome);
    void Continue(const std::string& request);
    void Refuse(const std::string& request, const char* pszReason);
    void ContinueHeld();

    const Write m_write;
    const bool m_isRepeatAllowed;
    std::atomic<Ability> m_ability{Ability::unknown};

    mutable std::mutex m_mutex; // of what follows
    int m_lastCall;
    NetworkActivity m_activity;
    ConnectionCloser m_closer;
    Requests m_heldUp = Requests::none;
    std::deque<Post> m_posts; // the first one's turn it is while m_isClosing
    std::vector<std::string> m_held;
    std::set<std::string> m_paused; // what the requests that wait here are called
    std::string m_ofOwner;          // the request that was held up last at its page's session
    bool m_isClosing = false;
};

} // namespace platform
