// One GET and its reply, whose body is taken off while it arrives.
#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <string_view>

#include "internet/CredentialStore.h"
#include "internet/CurlChannel.h"
#include "internet/FurtherCertificates.h"
#include "internet/InternetFailure.h"
#include "internet/ReadAhead.h"

namespace platform {

struct ExchangeRequest {
    std::string url;   // http or https, without user information
    std::string agent; // empty: no user-agent field
    std::optional<UserCredentials> server;
    std::optional<UserCredentials> proxy;
    const FurtherCertificates& certificates;
    CURLSH* share = nullptr;
};

// Used by one thread at a time. Redirects are not followed.
class HttpExchange {
public:
    // Takes the channel for its life and begins.
    HttpExchange(CurlChannel& channel, ExchangeRequest request);
    ~HttpExchange();
    HttpExchange(const HttpExchange&) = delete;
    HttpExchange& operator=(const HttpExchange&) = delete;

    // Does what can be done without waiting. What has come of the body stays in Body(); more comes
    // only after that is empty.
    void Work();
    void Wait(std::chrono::milliseconds time) { m_channel.Wait(time); }

    // The head that the caller gets: the one behind answered challenges and interim replies.
    bool HasHead() const { return m_isHeadFinal; }
    bool HasEnded() const { return m_hasEnded; }
    // Set when it has ended otherwise than with a complete reply.
    const std::optional<InternetFailure>& Failure() const { return m_failure; }
    ReadAhead& Body() { return m_body; }

    // Of the head.
    int Status() const { return m_status; }
    std::string Field(const char* pszName) const { return ReplyField(m_channel.Easy(), pszName); }
    // All fields of the name, as one list.
    std::string Fields(const char* pszName) const {
        return JoinedReplyField(m_channel.Easy(), pszName);
    }
    std::optional<curl_off_t> ContentLength() const;
    // The value of the challenge of a 401 or 407 that a name and a password can answer; empty when
    // there is none.
    std::optional<std::string> PasswordChallenge() const;
    // Address and port that the connection went to.
    std::string Peer() const;

private:
    static std::size_t OnHeader(char* data, std::size_t size, std::size_t count, void* self);
    static std::size_t OnBody(char* data, std::size_t size, std::size_t count, void* self);

    void SetUp();
    void SetUpCredentials();
    bool TakeHeaderLine(std::string_view line);
    bool TakeHead(int status);
    bool TakeBody(std::string_view bytes);
    void End(CURLcode code);
    bool Fail(DWORD error, std::string text);

    CurlChannel& m_channel;
    const ExchangeRequest m_request;
    CurlList m_headerList;
    char m_errorBuffer[CURL_ERROR_SIZE] = "";

    int m_status = 0;
    std::size_t m_headerBytes = 0;
    bool m_isHeadFinal = false;
    bool m_isPaused = false;
    bool m_hasEnded = false;
    ReadAhead m_body;
    std::optional<InternetFailure> m_failure;
};

} // namespace platform
