#include "internet/HttpExchange.h"

#include <platform/Internet.h>

#include "internet/ReplyFraming.h"
#include "internet/TlsContext.h"
#include "internet/TransferLimits.h"
#include "internet/TrustedCertificates.h"

namespace platform {
namespace {

constexpr long kReceiveBufferBytes = ReadAhead::kCapacity / 2;
constexpr long kPasswordSchemes = static_cast<long>(CURLAUTH_BASIC | CURLAUTH_DIGEST);
constexpr int kUnauthorized = 401;
constexpr int kProxyUnauthorized = 407;

} // namespace

HttpExchange::HttpExchange(CurlChannel& channel, ExchangeRequest request)
    : m_channel(channel), m_request(std::move(request)) {
    SetUp();
    SetUpCredentials();
    m_channel.Start();
}

HttpExchange::~HttpExchange() {
    m_channel.Stop();
    ResetEasy(m_channel.Easy()); // forgets where this object was
}

void HttpExchange::SetUp() {
    CURL* easy = m_channel.Easy();
    ResetEasy(easy);
    curl_easy_setopt(easy, CURLOPT_SHARE, m_request.share);
    curl_easy_setopt(easy, CURLOPT_COOKIEFILE, ""); // switches cookies on, reads no file
    curl_easy_setopt(easy, CURLOPT_NOSIGNAL, 1L);
    // A host name that is still being looked up does not hold up the end of the wait.
    curl_easy_setopt(easy, CURLOPT_QUICK_EXIT, 1L);
    curl_easy_setopt(easy, CURLOPT_CONNECTTIMEOUT, static_cast<long>(kConnectTimeout.count()));
    curl_easy_setopt(easy, CURLOPT_BUFFERSIZE, kReceiveBufferBytes);
    curl_easy_setopt(easy, CURLOPT_ERRORBUFFER, m_errorBuffer);
    curl_easy_setopt(easy, CURLOPT_HEADERFUNCTION, &HttpExchange::OnHeader);
    curl_easy_setopt(easy, CURLOPT_HEADERDATA, this);
    curl_easy_setopt(easy, CURLOPT_WRITEFUNCTION, &HttpExchange::OnBody);
    curl_easy_setopt(easy, CURLOPT_WRITEDATA, this);
    curl_easy_setopt(easy, CURLOPT_PROTOCOLS_STR, "http,https");
    // A paused HTTP/2 stream would go on to fill a window of many megabytes.
    curl_easy_setopt(easy, CURLOPT_HTTP_VERSION, static_cast<long>(CURL_HTTP_VERSION_1_1));
    SetUpTls(easy);
    TrustCertificates(easy, m_request.certificates);
    curl_easy_setopt(easy, CURLOPT_URL, m_request.url.c_str());
    if (!m_request.agent.empty())
        curl_easy_setopt(easy, CURLOPT_USERAGENT, m_request.agent.c_str());
    AppendTo(m_headerList, "Cache-Control: no-cache");
    AppendTo(m_headerList, "Pragma: no-cache");
    // The length of an encoded body says nothing of how far a reader has come.
    AppendTo(m_headerList, "Accept-Encoding: identity");
    curl_easy_setopt(easy, CURLOPT_HTTPHEADER, m_headerList.get());
}

void HttpExchange::SetUpCredentials() {
    CURL* easy = m_channel.Easy();
    if (const auto& server = m_request.server) {
        curl_easy_setopt(easy, CURLOPT_HTTPAUTH, kPasswordSchemes);
        curl_easy_setopt(easy, CURLOPT_USERNAME, server->name.c_str());
        curl_easy_setopt(easy, CURLOPT_PASSWORD, server->password.c_str());
    }
    // For those of the proxy's own URL, too.
    curl_easy_setopt(easy, CURLOPT_PROXYAUTH, kPasswordSchemes);
    if (const auto& proxy = m_request.proxy) {
        curl_easy_setopt(easy, CURLOPT_PROXYUSERNAME, proxy->name.c_str());
        curl_easy_setopt(easy, CURLOPT_PROXYPASSWORD, proxy->password.c_str());
    }
}

void HttpExchange::Work() {
    if (m_hasEnded) return;
    if (m_isPaused && m_body.IsEmpty()) {
        m_isPaused = false;
        m_channel.Resume();
    }
    if (m_body.IsEmpty())
        if (const auto code = m_channel.Work()) End(*code);
}

std::size_t HttpExchange::OnHeader(char* data, std::size_t size, std::size_t count, void* self) {
    const bool isTaken = static_cast<HttpExchange*>(self)->TakeHeaderLine({data, size * count});
    return isTaken ? size * count : 0;
}

std::size_t HttpExchange::OnBody(char* data, std::size_t size, std::size_t count, void* self) {
    const bool isTaken = static_cast<HttpExchange*>(self)->TakeBody({data, size * count});
    return isTaken ? size * count : CURL_WRITEFUNC_PAUSE;
}

bool HttpExchange::TakeHeaderLine(std::string_view line) {
    m_headerBytes += line.size();
    if (m_headerBytes > kMaxHeaderBytes)
        return Fail(ERROR_HTTP_INVALID_SERVER_RESPONSE, "the head of the reply is larger than " +
                                                            std::to_string(kMaxHeaderBytes) +
                                                            " bytes");
    // Behind the head there are only trailers.
    if (m_isHeadFinal || (line != "\r\n" && line != "\n")) return true;
    long status = 0; // stays so while a tunnel is asked for
    curl_easy_getinfo(m_channel.Easy(), CURLINFO_RESPONSE_CODE, &status);
    return TakeHead(static_cast<int>(status));
}

bool HttpExchange::TakeHead(int status) {
    if (status == 101)
        return Fail(ERROR_HTTP_INVALID_SERVER_RESPONSE, "the server switches to another protocol");
    if (status < 200) return true;
    if (std::string problem = FramingProblem(m_channel.Easy()); !problem.empty())
        return Fail(ERROR_HTTP_INVALID_SERVER_RESPONSE, std::move(problem));
    m_status = status;
    // The library may be about to answer a challenge. When it does not, the body or the end comes.
    // A proxy's name and password may also be part of its URL.
    m_isHeadFinal = status != kProxyUnauthorized && !(status == kUnauthorized && m_request.server);
    return true;
}

bool HttpExchange::TakeBody(std::string_view bytes) {
    m_isHeadFinal = true;
    m_isPaused = !m_body.Append(bytes);
    return !m_isPaused;
}

void HttpExchange::End(CURLcode code) {
    m_hasEnded = true;
    if (m_failure) return; // a callback has ended it
    CURL* easy = m_channel.Easy();
    long connectStatus = 0;
    curl_easy_getinfo(easy, CURLINFO_HTTP_CONNECTCODE, &connectStatus);
    if (m_status == 0 && connectStatus == kProxyUnauthorized) {
        // No tunnel: the proxy's reply is all there is, and its body is gone.
        m_status = kProxyUnauthorized;
        m_isHeadFinal = true;
    } else if (code != CURLE_OK) {
        m_failure = FailureOf(easy, code, m_status != 0, m_request.url, m_errorBuffer);
    } else if (m_status == 0) {
        Fail(ERROR_INTERNET_CONNECTION_ABORTED,
             "the connection broke off in the head of the reply");
    }
    if (m_status != 0 && !m_failure) m_isHeadFinal = true;
}

bool HttpExchange::Fail(DWORD error, std::string text) {
    m_failure = InternetFailure{error, std::move(text)};
    return false;
}

std::optional<curl_off_t> HttpExchange::ContentLength() const {
    curl_off_t length = -1;
    curl_easy_getinfo(m_channel.Easy(), CURLINFO_CONTENT_LENGTH_DOWNLOAD_T, &length);
    return length < 0 ? std::nullopt : std::optional(length);
}

std::optional<std::string> HttpExchange::PasswordChallenge() const {
    const bool isProxy = m_status == kProxyUnauthorized;
    if (!isProxy && m_status != kUnauthorized) return std::nullopt;
    CURL* easy = m_channel.Easy();
    long schemes = 0;
    curl_easy_getinfo(easy, isProxy ? CURLINFO_PROXYAUTH_AVAIL : CURLINFO_HTTPAUTH_AVAIL, &schemes);
    if ((schemes & kPasswordSchemes) == 0) return std::nullopt;
    const char* pszName = isProxy ? "Proxy-Authenticate" : "WWW-Authenticate";
    return JoinedReplyField(easy, pszName, CURLH_HEADER | CURLH_CONNECT);
}

std::string HttpExchange::Peer() const {
    char* pszAddress = nullptr;
    long port = 0;
    curl_easy_getinfo(m_channel.Easy(), CURLINFO_PRIMARY_IP, &pszAddress);
    curl_easy_getinfo(m_channel.Easy(), CURLINFO_PRIMARY_PORT, &port);
    return std::string(pszAddress ? pszAddress : "") + ":" + std::to_string(port);
}

} // namespace platform
