// One page on its way: a request, the redirects it is sent through, the reply's head and body.
#pragma once

#include <chrono>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "browser/builtin/NetworkMessages.h"
#include "browser/common/PageUrl.h"
#include "internet/ContentDecoder.h"
#include "internet/CurlHandles.h"
#include "internet/FurtherCertificates.h"

namespace platform {

// What all transfers of one browser share.
struct TransferSettings {
    CURLSH* share = nullptr; // cookies and TLS sessions
    FurtherCertificates certificates;

    // Why the URL must not be asked for; empty when it may.
    std::string ReasonAgainst(const std::string& url) const {
        return SchemeOf(url) == "https" ? certificates.problem : std::string();
    }
};

// On the network thread only. What it finds out is appended to `events`.
class Transfer {
public:
    using Time = std::chrono::steady_clock::time_point;

    Transfer(FetchRequest request, CurlEasy easy, const TransferSettings& settings,
             std::vector<NetworkEvent>& events);
    Transfer(const Transfer&) = delete;
    Transfer& operator=(const Transfer&) = delete;

    CURL* Easy() const { return m_easy.get(); }
    FetchId Id() const { return m_request.id; }
    // Until when the body of a redirect is waited for; empty when there is none to wait for.
    std::optional<Time> PatienceEnd() const;

    // The transfer, taken out of the multi handle, has ended with `code`, or was ended while the
    // body of a redirect was still to come. True when the next request is set up and is to be
    // added again; otherwise everything has been said.
    bool Finish(CURLcode code);

    // For the next one.
    CurlEasy ReleaseEasy() { return std::move(m_easy); }

private:
    static std::size_t OnHeader(char* data, std::size_t size, std::size_t count, void* self);
    static std::size_t OnBody(char* data, std::size_t size, std::size_t count, void* self);

    void SetUp();
    void SetUpRequest();
    void SetUpSecurity();
    bool TakeHeaderLine(std::string_view line);
    bool TakeHead(long status);
    bool TakeBody(std::string_view bytes);
    bool TakeDecoded(std::string_view bytes);
    bool Follow();
    void FollowTo(std::string url, bool isSameOrigin);
    void Fail(std::string reason);
    void Report(decltype(NetworkEvent::what) what);

    FetchRequest m_request;
    CurlEasy m_easy;
    const TransferSettings& m_settings;
    std::vector<NetworkEvent>& m_events;
    CurlList m_headerList;
    char m_errorBuffer[CURL_ERROR_SIZE] = "";

    long m_status = 0; // of the head that is complete; 0 before
    std::string m_type;
    std::string m_refresh;
    std::string m_redirectTarget;
    Time m_redirectTime;
    int m_redirects = 0;
    std::size_t m_headerBytes = 0;
    std::size_t m_bodyBytes = 0;
    ContentCodings m_codings;
    std::string m_failure; // why a callback has ended the transfer
};

} // namespace platform
