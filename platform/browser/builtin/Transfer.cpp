#include "browser/builtin/Transfer.h"

#include <algorithm>

#include "browser/builtin/Limits.h"
#include "browser/builtin/UserAgent.h"
#include "browser/common/PageType.h"
#include "browser/common/PageUrl.h"
#include "internet/InternetFailure.h"
#include "internet/ReplyFraming.h"
#include "internet/TlsContext.h"
#include "internet/TransferLimits.h"
#include "internet/TrustedCertificates.h"

namespace platform {
namespace {

constexpr long kReceiveBufferBytes = 64 * 1024;

bool IsRedirect(long status) {
    return status == 301 || status == 302 || status == 303 || status == 307 || status == 308;
}

} // namespace

Transfer::Transfer(FetchRequest request, CurlEasy easy, const TransferSettings& settings,
                   std::vector<NetworkEvent>& events)
    : m_request(std::move(request)), m_easy(std::move(easy)), m_settings(settings),
      m_events(events) {
    SetUp();
}

void Transfer::SetUp() {
    CURL* easy = m_easy.get();
    ResetEasy(easy);
    m_status = 0;
    m_redirectTarget.clear();
    m_headerBytes = 0;
    m_bodyBytes = 0;
    m_errorBuffer[0] = '\0';
    curl_easy_setopt(easy, CURLOPT_PRIVATE, this);
    curl_easy_setopt(easy, CURLOPT_SHARE, m_settings.share);
    curl_easy_setopt(easy, CURLOPT_COOKIEFILE, ""); // switches cookies on, reads no file
    curl_easy_setopt(easy, CURLOPT_NOSIGNAL, 1L);
    // A host name that is still being looked up does not hold up the end of the thread.
    curl_easy_setopt(easy, CURLOPT_QUICK_EXIT, 1L);
    curl_easy_setopt(easy, CURLOPT_CONNECTTIMEOUT, static_cast<long>(kConnectTimeout.count()));
    curl_easy_setopt(easy, CURLOPT_BUFFERSIZE, kReceiveBufferBytes);
    curl_easy_setopt(easy, CURLOPT_ERRORBUFFER, m_errorBuffer);
    curl_easy_setopt(easy, CURLOPT_SUPPRESS_CONNECT_HEADERS, 1L);
    curl_easy_setopt(easy, CURLOPT_HEADERFUNCTION, &Transfer::OnHeader);
    curl_easy_setopt(easy, CURLOPT_HEADERDATA, this);
    curl_easy_setopt(easy, CURLOPT_WRITEFUNCTION, &Transfer::OnBody);
    curl_easy_setopt(easy, CURLOPT_WRITEDATA, this);
    SetUpSecurity();
    SetUpRequest();
}

void Transfer::SetUpSecurity() {
    CURL* easy = m_easy.get();
    curl_easy_setopt(easy, CURLOPT_PROTOCOLS_STR, "http,https");
    SetUpTls(easy);
    TrustCertificates(easy, m_settings.certificates);
    const Credentials& credentials = m_request.credentials;
    if (credentials.user.empty() && credentials.password.empty()) return;
    if (OriginOf(m_request.url) != credentials.origin) return;
    curl_easy_setopt(easy, CURLOPT_USERNAME, credentials.user.c_str());
    curl_easy_setopt(easy, CURLOPT_PASSWORD, credentials.password.c_str());
}

void Transfer::SetUpRequest() {
    CURL* easy = m_easy.get();
    curl_easy_setopt(easy, CURLOPT_URL, m_request.url.c_str());
    curl_easy_setopt(easy, CURLOPT_USERAGENT, kBuiltinUserAgent);
    curl_easy_setopt(easy, CURLOPT_ACCEPT_ENCODING, ContentCodings::kAccepted);
    // Undone here: the library does not see that one is cut off.
    curl_easy_setopt(easy, CURLOPT_HTTP_CONTENT_DECODING, 0L);
    m_headerList.reset();
    for (const HeaderField& field : m_request.headers)
        // The library takes "Name:" for "leave it out" and "Name;" for an empty field.
        AppendTo(m_headerList,
                 field.value.empty() ? field.name + ";" : field.name + ": " + field.value);
    if (!m_request.postData.empty()) {
        curl_easy_setopt(easy, CURLOPT_POSTFIELDSIZE_LARGE,
                         static_cast<curl_off_t>(m_request.postData.size()));
        curl_easy_setopt(easy, CURLOPT_POSTFIELDS, m_request.postData.data());
        AppendTo(m_headerList, "Expect:"); // no waiting for a 100
        // On a kept connection that breaks off the library sends the data again, although the
        // server may have acted on it (RFC 9110, 9.2.2).
        curl_easy_setopt(easy, CURLOPT_FRESH_CONNECT, 1L);
    }
    curl_easy_setopt(easy, CURLOPT_HTTPHEADER, m_headerList.get());
}

std::size_t Transfer::OnHeader(char* data, std::size_t size, std::size_t count, void* self) {
    const bool isTaken = static_cast<Transfer*>(self)->TakeHeaderLine({data, size * count});
    return isTaken ? size * count : 0;
}

std::size_t Transfer::OnBody(char* data, std::size_t size, std::size_t count, void* self) {
    const bool isTaken = static_cast<Transfer*>(self)->TakeBody({data, size * count});
    return isTaken ? size * count : 0;
}

bool Transfer::TakeHeaderLine(std::string_view line) {
    m_headerBytes += line.size();
    if (m_headerBytes > kMaxHeaderBytes) {
        m_failure =
            "the head of the reply is larger than " + std::to_string(kMaxHeaderBytes) + " bytes";
        return false;
    }
    long status = 0;
    curl_easy_getinfo(m_easy.get(), CURLINFO_RESPONSE_CODE, &status);
    const bool isEnd = line == "\r\n" || line == "\n";
    // No request asks for that, and no page would follow: it is not waited for.
    if (isEnd && status == 101) {
        m_failure = "the server switches to another protocol";
        return false;
    }
    // Interim replies and trailers have an end of their own.
    return !isEnd || status < 200 || m_status != 0 || TakeHead(status);
}

bool Transfer::TakeHead(long status) {
    m_status = status;
    m_failure = FramingProblem(m_easy.get());
    if (!m_failure.empty()) return false;
    if (IsRedirect(status)) m_redirectTarget = ReplyField(m_easy.get(), "Location");
    if (!m_redirectTarget.empty()) {
        m_redirectTime = std::chrono::steady_clock::now();
        return true;
    }
    HeadReceived head;
    head.url = m_request.url;
    head.reply.status = static_cast<int>(status);
    head.reply.type = WithoutParameters(ReplyField(m_easy.get(), "Content-Type"));
    head.reply.isAttachment =
        WithoutParameters(ReplyField(m_easy.get(), "Content-Disposition")) == "attachment";
    m_type = head.reply.type;
    m_refresh = ReplyField(m_easy.get(), "Refresh");
    m_codings = ContentCodings(JoinedReplyField(m_easy.get(), "Content-Encoding"));
    Report(std::move(head));
    return true;
}

bool Transfer::TakeBody(std::string_view bytes) {
    if (!m_redirectTarget.empty()) return (m_bodyBytes += bytes.size()) <= kMaxRedirectBodyBytes;
    if (m_codings.Decode(bytes, [this](std::string_view decoded) { return TakeDecoded(decoded); }))
        return true;
    if (m_failure.empty()) m_failure = m_codings.Problem();
    return false;
}

bool Transfer::TakeDecoded(std::string_view bytes) {
    if (bytes.empty()) return true;
    const bool isFirst = m_bodyBytes == 0;
    m_bodyBytes += bytes.size();
    if (!m_request.body->Append(bytes)) {
        m_failure = TooLargeText(m_bodyBytes);
        return false;
    }
    if (isFirst) Report(FirstBytesReceived{});
    return true;
}

std::optional<Transfer::Time> Transfer::PatienceEnd() const {
    if (m_redirectTarget.empty()) return std::nullopt;
    return m_redirectTime + kRedirectBodyPatience;
}

bool Transfer::Finish(CURLcode code) {
    if (!m_failure.empty()) {
        Fail(m_failure);
    } else if (!m_redirectTarget.empty()) {
        return Follow(); // whatever became of a body that nobody sees
    } else if (code != CURLE_OK) {
        Fail(FailureOf(m_easy.get(), code, m_status != 0, m_request.url, m_errorBuffer).text);
    } else if (m_status == 0) {
        Fail("the connection broke off in the head of the reply");
    } else if (const std::string problem = m_codings.Problem(); !problem.empty()) {
        Fail(problem);
    } else {
        PageReceived page;
        if (IsHtmlType(m_type))
            page.scan = ScanHtml(m_request.body->ViewByWriter(), m_request.url, page.problem);
        if (auto rule = ParseRefresh(m_refresh); rule && IsPageType(m_type)) {
            auto url = ResolveReference(m_request.url, rule->reference);
            if (url && IsHttpUrl(*url)) page.scan.refresh = RefreshRule{rule->seconds, *url};
        }
        Report(std::move(page));
    }
    return false;
}

bool Transfer::Follow() {
    const std::string fragment =
        m_request.url.substr(std::min(m_request.url.find('#'), m_request.url.size()));
    auto url = ResolveReference(m_request.url, m_redirectTarget);
    if (!url)
        Fail("the server redirects to a malformed URL");
    else if (!IsHttpUrl(*url))
        Fail("the server redirects to a URL that is neither http nor https");
    else if (++m_redirects > kMaxRedirects)
        Fail("more than " + std::to_string(kMaxRedirects) + " redirects");
    else if (const std::string reason = m_settings.ReasonAgainst(*url); !reason.empty())
        Fail(reason);
    else if (const bool isSame = OriginOf(*url) == OriginOf(m_request.url);
             !isSame && m_status >= 307 && !m_request.postData.empty())
        Fail("the server redirects the post data to another origin");
    else {
        FollowTo(url->find('#') == std::string::npos ? *url + fragment : *url, isSame);
        return true;
    }
    return false;
}

void Transfer::FollowTo(std::string url, bool isSameOrigin) {
    const bool isRepeated = m_status >= 307 && isSameOrigin && !m_request.postData.empty();
    if (!isRepeated) m_request.postData.clear();
    std::erase_if(m_request.headers, [&](const HeaderField& field) {
        return !isRepeated || !EqualsIgnoringCase(field.name, "Content-Type");
    });
    m_request.url = std::move(url);
    SetUp();
}

void Transfer::Fail(std::string reason) {
    Report(FetchFailed{m_request.url, std::move(reason)});
}

void Transfer::Report(decltype(NetworkEvent::what) what) {
    m_events.push_back({m_request.id, std::move(what)});
}

} // namespace platform
