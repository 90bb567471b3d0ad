#include "internet/InternetRequest.h"

#include <algorithm>
#include <cstring>
#include <string_view>
#include <vector>

#include <platform/String.h>

#include "internet/AuthenticationRealm.h"
#include "internet/CurlUrl.h"
#include "internet/FieldList.h"
#include "internet/TransferLimits.h"

namespace platform {
namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;

// How late the end of a wait may be noticed.
constexpr milliseconds kStep{100};

bool IsRedirect(int status) {
    return status == 301 || status == 302 || status == 303 || status == 307 || status == 308;
}

bool IsStopRequested() {
    const std::atomic<int>* word = ScopedInternetStop::Current();
    return word && word->load() != 0;
}

} // namespace

std::optional<InternetFailure> Patience::Exceeded() const {
    if (m_time.count() == 0 || steady_clock::now() < m_end) return std::nullopt;
    return InternetFailure{ERROR_INTERNET_TIMEOUT,
                           "no progress within " + std::to_string(m_time.count()) + " ms"};
}

InternetRequest::InternetRequest(std::shared_ptr<InternetSession> session)
    : m_session(std::move(session)), m_channel(m_session->TakeChannel()) {}

InternetRequest::~InternetRequest() {
    m_exchange.reset();
    m_session->ReturnChannel(std::move(m_channel));
}

void InternetRequest::Close() {
    m_isClosed = true;
    m_channel->Wake();
}

bool InternetRequest::IsCancelled() const {
    return m_isClosed || m_session->IsClosed() || IsStopRequested();
}

std::optional<InternetFailure> InternetRequest::Open(PageUrl url) {
    m_url = std::move(url.url);
    m_ownSpace = ServerSpace();
    if (!url.user.empty() || !url.password.empty())
        m_ownCredentials = UserCredentials{std::move(url.user), std::move(url.password)};
    for (int redirects = 0;; ++redirects) {
        if (const std::string& problem = m_session->Certificates().problem;
            !problem.empty() && SchemeOf(m_url) == "https")
            return InternetFailure{ERROR_INTERNET_INVALID_CA, problem};
        Begin();
        if (auto failure = WaitForHead()) return failure;
        const std::string reference = RedirectTarget();
        if (reference.empty()) break;
        if (redirects == kMaxRedirects)
            return InternetFailure{ERROR_HTTP_REDIRECT_FAILED,
                                   "more than " + std::to_string(kMaxRedirects) + " redirects"};
        if (auto failure = Follow(reference)) return failure;
    }
    return TakeCoding();
}

// One that is not known leaves the bytes as they are; none can be undone of several.
std::optional<InternetFailure> InternetRequest::TakeCoding() {
    const std::string names = m_exchange->Fields("Content-Encoding");
    std::vector<std::string_view> codings = ListMembers(names);
    std::erase_if(codings, [](std::string_view name) {
        return name.empty() || CString(name).CompareNoCase("identity") == 0;
    });
    if (codings.size() > 1)
        return InternetFailure{ERROR_HTTP_INVALID_SERVER_RESPONSE, kUnaskedCoding};
    m_decoder = codings.empty() ? nullptr : ContentDecoder::For(std::string(codings.front()));
    return std::nullopt;
}

void InternetRequest::Begin() {
    ExchangeRequest request{m_url,
                            m_session->Agent(),
                            ServerCredentials(),
                            m_session->Credentials().Find(ProxySpace()),
                            m_session->Certificates(),
                            m_session->Share()};
    m_exchange.reset(); // leaves the channel
    m_exchange.emplace(*m_channel, std::move(request));
}

// What the user has answered comes first: the URL's own was refused before.
std::optional<UserCredentials> InternetRequest::ServerCredentials() const {
    if (auto answered = m_session->Credentials().Find(ServerSpace())) return answered;
    return ServerSpace() == m_ownSpace ? m_ownCredentials : std::nullopt;
}

std::optional<InternetFailure> InternetRequest::WaitForHead() {
    const Patience patience(m_session->ReceiveTimeout());
    while (!m_exchange->HasHead()) {
        if (m_exchange->HasEnded()) return m_exchange->Failure();
        if (auto failure = WhyOver(patience)) return failure;
        m_exchange->Work();
        if (!m_exchange->HasHead() && !m_exchange->HasEnded()) m_exchange->Wait(kStep);
    }
    return std::nullopt;
}

// Why a wait for what has not come goes on no longer.
std::optional<InternetFailure> InternetRequest::WhyOver(const Patience& patience) const {
    if (IsCancelled())
        return InternetFailure{ERROR_INTERNET_OPERATION_CANCELLED, "the request was stopped"};
    return patience.Exceeded();
}

std::string InternetRequest::RedirectTarget() const {
    return IsRedirect(Status()) ? m_exchange->Field("Location") : std::string();
}

std::optional<InternetFailure> InternetRequest::Follow(const std::string& reference) {
    auto url = ResolveReference(m_url, reference);
    if (!url)
        return InternetFailure{ERROR_HTTP_INVALID_SERVER_RESPONSE,
                               "the server redirects to a malformed URL"};
    if (!IsHttpUrl(*url))
        return InternetFailure{ERROR_HTTP_REDIRECT_FAILED,
                               "the server redirects to a URL that is neither http nor https"};
    DropBody();
    m_url = std::move(*url);
    return std::nullopt;
}

// A connection whose reply has been read to its end can be kept.
void InternetRequest::DropBody() {
    const auto end = steady_clock::now() + kRedirectBodyPatience;
    std::size_t dropped = 0;
    while (!m_exchange->HasEnded() && dropped <= kMaxRedirectBodyBytes && !IsCancelled()) {
        dropped += m_exchange->Body().View().size();
        m_exchange->Body().Clear();
        m_exchange->Work();
        const auto left = std::chrono::ceil<milliseconds>(end - steady_clock::now());
        if (left.count() <= 0) break;
        if (!m_exchange->HasEnded() && m_exchange->Body().IsEmpty()) m_exchange->Wait(left);
    }
}

std::optional<curl_off_t> InternetRequest::ContentLength() const {
    return m_decoder ? std::nullopt : m_exchange->ContentLength();
}

std::optional<InternetFailure> InternetRequest::Read(void* pBuffer, std::size_t room,
                                                     std::size_t& count) {
    const Patience patience(m_session->ReceiveTimeout());
    for (;;) {
        count = Take(pBuffer, room);
        if (count > 0 || room == 0) return std::nullopt;
        if (m_decoder && m_decoder->IsBroken())
            return InternetFailure{ERROR_HTTP_INVALID_SERVER_RESPONSE, kBrokenCoding};
        if (m_exchange->HasEnded() && m_exchange->Body().IsEmpty()) return End();
        if (auto failure = WhyOver(patience)) return failure;
        m_exchange->Work();
        if (m_exchange->Body().IsEmpty() && !m_exchange->HasEnded()) m_exchange->Wait(kStep);
    }
}

std::size_t InternetRequest::Take(void* pBuffer, std::size_t room) {
    ReadAhead& body = m_exchange->Body();
    std::string_view bytes = body.View();
    if (m_decoder) {
        const std::size_t written = m_decoder->Decode(bytes, pBuffer, room);
        body.Consume(body.View().size() - bytes.size());
        return written;
    }
    const std::size_t count = std::min(room, bytes.size());
    if (count > 0) std::memcpy(pBuffer, bytes.data(), count);
    body.Consume(count);
    return count;
}

std::optional<InternetFailure> InternetRequest::End() const {
    if (m_exchange->Failure()) return m_exchange->Failure();
    if (!m_decoder || m_decoder->IsComplete()) return std::nullopt;
    return InternetFailure{ERROR_INTERNET_CONNECTION_ABORTED, kCutCoding};
}

std::optional<PasswordQuestion> InternetRequest::Question() const {
    const auto challenge = m_exchange->PasswordChallenge();
    if (!challenge) return std::nullopt;
    const std::string realm = RealmOf(*challenge);
    if (Status() == 407)
        return PasswordQuestion{ProxySpace(), "proxy " + m_exchange->Peer(), realm,
                                m_session->Credentials().Find(ProxySpace()).has_value()};
    const auto url = CurlUrl::Parse(m_url);
    return PasswordQuestion{ServerSpace(), "server " + (url ? url->Host() : std::string()), realm,
                            ServerCredentials().has_value()};
}

void InternetRequest::Answer(const PasswordQuestion& question, UserCredentials credentials) {
    m_session->Credentials().Keep(question.space, std::move(credentials));
}

} // namespace platform
