#include "browser/chromium/DocumentSource.h"

#include <algorithm>
#include <utility>

#include "browser/chromium/Base64.h"
#include "browser/chromium/ChromiumPage.h"

namespace platform {
namespace {

// A renderer tells of the end over another way than the bytes take, and may be a step ahead.
constexpr int kMaxAsksAtEnd = 100;
constexpr const char* kReplacementCharacter = "\xEF\xBF\xBD";

} // namespace

std::size_t DocumentSource::ReceivedBytes() const {
    return std::max(m_announced, m_body->Size());
}

void DocumentSource::Discard() {
    m_state = State::lost;
    m_body->Replace({});
    m_early.clear();
}

void DocumentSource::Begin(ChromiumPage& page, const std::string& session,
                           std::function<void()> onChange) {
    if (m_state != State::idle) return;
    m_page = page.weak_from_this();
    m_session = session;
    m_onChange = std::move(onChange);
    Ask();
}

void DocumentSource::Ask() {
    const auto page = m_page.lock();
    if (!page) return;
    m_state = State::asked;
    if (m_isFinished) ++m_asksAtEnd;
    page->SendTo(m_session, "Network.getResponseBody", {{"requestId", m_request}},
                 [self = shared_from_this()](DevToolsReply& reply) {
                     self->OnAnswer(reply.result, reply.IsOk());
                 });
}

void DocumentSource::OnAnswer(const Json& result, bool isOk) {
    if (IsSettled()) return; // streamed to the end meanwhile, or stopped
    if (isOk) return TakeBody(result);
    if (m_asksAtEnd >= kMaxAsksAtEnd) {
        m_state = State::lost;
        return Changed();
    }
    m_state = State::refused;
    if (m_isFinished) return Ask();
    AskForStream();
}

void DocumentSource::TakeBody(const Json& result) {
    std::string body = TextOf(result, "body");
    const bool isEncoded = IsTrue(result, "base64Encoded");
    m_hasReplacements = !isEncoded && body.find(kReplacementCharacter) != std::string::npos;
    m_body->Replace(isEncoded ? DecodeBase64(body) : std::move(body));
    m_state = isEncoded ? State::whole : State::unverified;
    if (m_state == State::unverified && m_isFinished) return Verify();
    Changed();
}

// A renderer answers in the browser's place when it is the faster one, with decoded text. That is
// longer or shorter than what was received, or has replacement characters for what was no text.
void DocumentSource::Verify() {
    const bool isDoubtful = m_hasReplacements || m_body->Size() != m_announced;
    if (isDoubtful && m_asksAtEnd < kMaxAsksAtEnd) return Ask();
    m_state = State::whole;
    Changed();
}

void DocumentSource::AskForStream() {
    const auto page = m_page.lock();
    if (!page || m_stream != Stream::none || m_announced == 0) return;
    m_stream = Stream::asked;
    page->SendTo(m_session, "Network.streamResourceContent", {{"requestId", m_request}},
                 [self = shared_from_this()](DevToolsReply& reply) {
                     self->OnStreaming(reply.result, reply.IsOk());
                 });
}

void DocumentSource::OnStreaming(const Json& result, bool isOk) {
    if (!isOk || IsSettled()) return; // finished meanwhile: the whole is on its way
    m_stream = Stream::running;
    m_body->Append(DecodeBase64(TextOf(result, "bufferedData")));
    m_body->Append(std::exchange(m_early, {}));
    Changed();
}

void DocumentSource::OnData(const Json& params) {
    if (IsSettled()) return;
    m_announced += static_cast<std::size_t>(std::max(NumberOf(params, "dataLength"), 0));
    const std::string data = DecodeBase64(TextOf(params, "data"));
    if (m_stream == Stream::asked) m_early += data;
    if (m_stream == Stream::running && !data.empty()) {
        m_body->Append(data);
        Changed();
    }
    if (m_state == State::refused) AskForStream();
}

void DocumentSource::OnFinished() {
    m_isFinished = true;
    if (m_state == State::unverified) return Verify();
    if (m_state != State::refused) return;
    if (m_stream != Stream::running || m_body->Size() != m_announced) return Ask();
    m_state = State::whole;
    Changed();
}

void DocumentSource::Changed() const {
    if (const auto onChange = m_onChange) onChange();
}

} // namespace platform
