// The bytes of one document, as its server sent them, out of the browser's hands.
#pragma once

#include <functional>
#include <memory>
#include <string>

#include "browser/chromium/DevToolsValues.h"
#include "browser/common/ReplyBody.h"

namespace platform {

class ChromiumPage;

// The browser keeps the bytes beside its renderers and hands them out as a whole, all or nothing:
// asked for as soon as the head is there. A document that is still on its way then is streamed:
// what has come so far, and the rest as it comes.
class DocumentSource : public std::enable_shared_from_this<DocumentSource> {
public:
    explicit DocumentSource(std::string request) : m_request(std::move(request)) {}

    const std::shared_ptr<ReplyBody>& Body() const { return m_body; }
    // Neither more nor anything else will come.
    bool IsSettled() const { return m_state == State::whole || m_state == State::lost; }
    bool IsLost() const { return m_state == State::lost; }
    // As far as it has come; more than `Body()` holds where the browser has not handed it out.
    std::size_t ReceivedBytes() const;
    // There is something to read, or there will be nothing.
    bool IsReadable() const { return m_body->Size() > 0 || m_state == State::whole; }

    // The head has come, in this session; `onChange` runs whenever one of the answers above may
    // have changed.
    void Begin(ChromiumPage& page, const std::string& session, std::function<void()> onChange);
    // A document without bytes.
    void BeEmpty() { m_state = State::whole; }
    // What has come goes, and nothing more is taken.
    void Discard();
    // What has come stays, and nothing is added.
    void Freeze() {
        if (!IsSettled()) m_state = State::lost;
    }
    // Network.dataReceived.
    void OnData(const Json& params);
    void OnFinished();

private:
    enum class State { idle, asked, refused, unverified, whole, lost };
    enum class Stream { none, asked, running };

    void Ask();
    void OnAnswer(const Json& result, bool isOk);
    void TakeBody(const Json& result);
    void Verify();
    void AskForStream();
    void OnStreaming(const Json& result, bool isOk);
    void Changed() const;

    const std::string m_request;
    const std::shared_ptr<ReplyBody> m_body = std::make_shared<ReplyBody>();
    std::weak_ptr<ChromiumPage> m_page;
    std::string m_session;
    std::function<void()> m_onChange;
    State m_state = State::idle;
    Stream m_stream = Stream::none;
    std::string m_early;         // streamed bytes that came ahead of those before them
    std::size_t m_announced = 0; // bytes that the browser has received
    bool m_isFinished = false;
    bool m_hasReplacements = false;
    int m_asksAtEnd = 0;
};

} // namespace platform
