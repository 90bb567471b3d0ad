// A request: what is asked for, the redirects it is sent through, and the reply that is read.
#pragma once

#include <atomic>
#include <chrono>
#include <memory>
#include <optional>
#include <string>

#include <platform/Internet.h>

#include "browser/common/PageUrl.h"
#include "internet/ContentDecoder.h"
#include "internet/HttpExchange.h"
#include "internet/InternetSession.h"

namespace platform {

// What a 401 or 407 wants to know.
struct PasswordQuestion {
    std::string space; // where the answer is kept
    std::string asker; // "server www.example.test", "proxy 10.0.0.1:3128"
    std::string realm; // may be empty
    bool isRepeated;   // a name and a password were sent and refused
};

// How long one wait may take, from now on.
class Patience {
public:
    explicit Patience(std::chrono::milliseconds time)
        : m_time(time), m_end(std::chrono::steady_clock::now() + time) {}
    // Empty while it lasts.
    std::optional<InternetFailure> Exceeded() const;

private:
    std::chrono::milliseconds m_time; // 0: for ever
    std::chrono::steady_clock::time_point m_end;
};

// Used by one thread at a time; Close by any. A wait ends with ERROR_INTERNET_OPERATION_CANCELLED
// within 250 ms after a Close, of the session, too, and when the thread's stop word says so.
class InternetRequest {
public:
    explicit InternetRequest(std::shared_ptr<InternetSession> session);
    ~InternetRequest();
    InternetRequest(const InternetRequest&) = delete;
    InternetRequest& operator=(const InternetRequest&) = delete;

    // Asks for an http or https URL, once, and waits for the head of the reply. Empty when it is
    // there; then the following may be called.
    std::optional<InternetFailure> Open(PageUrl url);
    void Close();
    // Nobody waits for it any more, on this thread.
    bool IsCancelled() const;

    int Status() const { return m_exchange->Status(); }
    // Of the bytes that are read; empty when it is not known beforehand.
    std::optional<curl_off_t> ContentLength() const;
    // Waits for the first of the next bytes; none is the end. Empty when there was no failure.
    std::optional<InternetFailure> Read(void* pBuffer, std::size_t room, std::size_t& count);

    std::optional<PasswordQuestion> Question() const;
    void Answer(const PasswordQuestion& question, UserCredentials credentials);

private:
    void Begin();
    std::optional<InternetFailure> WaitForHead();
    std::string RedirectTarget() const;
    std::optional<InternetFailure> Follow(const std::string& reference);
    std::optional<InternetFailure> TakeCoding();
    void DropBody();
    std::size_t Take(void* pBuffer, std::size_t room);
    std::optional<InternetFailure> WhyOver(const Patience& patience) const;
    std::optional<InternetFailure> End() const;

    std::string ServerSpace() const { return OriginOf(m_url); }
    std::string ProxySpace() const { return "proxy for " + SchemeOf(m_url); }
    std::optional<UserCredentials> ServerCredentials() const;

    const std::shared_ptr<InternetSession> m_session;
    std::unique_ptr<CurlChannel> m_channel;
    std::atomic<bool> m_isClosed{false};
    std::string m_url; // the one that the redirects have led to
    std::string m_ownSpace;
    std::optional<UserCredentials> m_ownCredentials; // the URL's own, for m_ownSpace
    std::optional<HttpExchange> m_exchange;          // uses the channel
    std::unique_ptr<ContentDecoder> m_decoder;       // null: the bytes are as they came
};

} // namespace platform
