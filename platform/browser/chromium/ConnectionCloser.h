// Closes the connections that a browser keeps, by a page of the browser's own that can.
#pragma once

#include <chrono>
#include <functional>
#include <string>

#include "browser/chromium/DevToolsValues.h"

namespace platform {

// Makes its page when it is first asked, out of sight, and keeps it. One question at a time. Not
// thread-safe.
class ConnectionCloser {
public:
    using Time = std::chrono::steady_clock::time_point;
    // idle: those that nobody uses. all: those in use, too, once they are not; what waits for a
    // connection fails, and what shares one (HTTP/2).
    enum class Which { idle, all };
    // impossible: the browser has no such page.
    enum class Outcome { closed, failed, impossible };
    using Send = std::function<int(const std::string& session, const char* pszMethod, Json params)>;
    using Done = std::function<void(Outcome)>;

    // `send` gives the number of the call, under which its reply comes back.
    explicit ConnectionCloser(Send send) : m_send(std::move(send)) {}

    // The pages of which browser context share their connections.
    void SetContext(const std::string& context) { m_context = context; }
    // The connections are closed when `done` runs; a request sent from then on gets a new one.
    void Close(Which which, Done done);
    void OnReply(int call, const Json& message);
    // True: an event of the page's own, for nobody else.
    bool TakeEvent(const Json& event);
    // While a question is open.
    Time Deadline() const { return m_deadline; }
    void GiveUp() { End(Outcome::failed); }
    void RemovePage();

private:
    bool TakeEnd(const Json& params);
    void MakePage();
    void Attach(const Json& result);
    void Evaluate();
    void OnEvaluated(const Json& message);
    void TryAgain(const std::string& error);
    void End(Outcome outcome);

    const Send m_send;
    std::string m_context;
    std::string m_target;
    std::string m_session;
    Which m_which = Which::idle;
    Done m_done;
    Time m_deadline{};
    int m_call = 0; // the one whose reply is waited for
    int m_tries = 0;
};

} // namespace platform
