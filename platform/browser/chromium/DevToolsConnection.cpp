#include "browser/chromium/DevToolsConnection.h"

#include <map>

#include <platform/Apartment.h>
#include <platform/Settings.h>

#include "browser/chromium/DevToolsPipe.h"
#include "browser/chromium/DevToolsValues.h"
#include "browser/chromium/PostGuard.h"

namespace platform {
namespace {

Json TakeObject(Json& message, const char* pszKey) {
    const auto found = message.find(pszKey);
    return found != message.end() && found->is_object() ? std::move(*found) : Json::object();
}

class PipeConnection final : public DevToolsConnection {
public:
    PipeConnection(std::shared_ptr<DevToolsPipe> pipe, std::shared_ptr<PostGuard> posts)
        : m_pipe(std::move(pipe)), m_posts(std::move(posts)) {}
    ~PipeConnection() override { Close(); }

    void SetEventHandler(EventHandler handler) override { m_onEvent = std::move(handler); }
    void SetEndHandler(std::function<void()> handler) override { m_onEnd = std::move(handler); }
    void Send(const std::string& session, const char* pszMethod, Json params, ReplyHandler onReply,
              std::chrono::milliseconds timeout) override;
    void Dispatch() override;
    bool WaitForMessages(std::chrono::milliseconds patience) override {
        return m_pipe->Wait(patience);
    }
    void Close() override;
    PostGuard& Posts() override { return *m_posts; }
    bool IsOpen() const override { return m_pipe->IsOpen(); }
    std::string ErrorOutput() const override { return m_pipe->ErrorOutput(); }

private:
    void Handle(PipeMessage& message);
    void HandleReply(int call, DevToolsReply& reply);
    void HandleEnd();

    const std::shared_ptr<DevToolsPipe> m_pipe;
    const std::shared_ptr<PostGuard> m_posts;
    EventHandler m_onEvent;
    std::function<void()> m_onEnd;
    std::map<int, ReplyHandler> m_calls;
    int m_lastCall = 0;
    bool m_isClosed = false;
};

void PipeConnection::Send(const std::string& session, const char* pszMethod, Json params,
                          ReplyHandler onReply, std::chrono::milliseconds timeout) {
    if (m_isClosed) return;
    const int call = ++m_lastCall;
    Json message{{"id", call}, {"method", pszMethod}};
    message["params"] = std::move(params);
    if (!session.empty()) message["sessionId"] = session;
    if (onReply) m_calls[call] = std::move(onReply);
    std::optional<DevToolsPipe::Time> deadline;
    if (timeout != kNoTimeout) deadline = std::chrono::steady_clock::now() + timeout;
    m_pipe->Write(message.dump(-1, ' ', false, Json::error_handler_t::replace), call, deadline);
}

void PipeConnection::Dispatch() {
    const auto keep = shared_from_this();
    while (auto message = m_pipe->Take())
        Handle(*message);
}

void PipeConnection::Handle(PipeMessage& message) {
    DevToolsReply reply;
    if (m_isClosed) return;
    if (message.kind == PipeMessage::Kind::end) return HandleEnd();
    if (message.kind == PipeMessage::Kind::timeout) {
        reply.error = m_pipe->IsOpen() ? kCallTimedOut : kBrowserGone;
        return HandleReply(message.call, reply);
    }
    Json& value = message.value;
    if (const Json* id = FindValue(value, "id")) {
        if (const Json* error = FindValue(value, "error")) {
            reply.error = TextOf(*error, "message");
            if (reply.error.empty()) reply.error = "unknown error";
        } else {
            reply.result = TakeObject(value, "result");
        }
        return HandleReply(id->get<int>(), reply);
    }
    if (!m_onEvent) return;
    DevToolsEvent event{TextOf(value, "sessionId"), TextOf(value, "method"),
                        TakeObject(value, "params")};
    const EventHandler handler = m_onEvent; // it may set another one
    handler(event);
}

void PipeConnection::HandleReply(int call, DevToolsReply& reply) {
    const auto found = m_calls.find(call);
    if (found == m_calls.end()) return;
    const ReplyHandler handler = std::move(found->second);
    m_calls.erase(found);
    handler(reply);
}

void PipeConnection::HandleEnd() {
    while (!m_calls.empty() && !m_isClosed) {
        DevToolsReply reply;
        reply.error = kBrowserGone;
        HandleReply(m_calls.begin()->first, reply);
    }
    if (const auto onEnd = std::move(m_onEnd)) onEnd();
}

// What handlers hold may hold this: they are let go outside.
void PipeConnection::Close() {
    if (m_isClosed) return;
    m_isClosed = true;
    m_pipe->Close();
    const auto calls = std::exchange(m_calls, {});
    const auto onEvent = std::exchange(m_onEvent, nullptr);
    const auto onEnd = std::exchange(m_onEnd, nullptr);
}

} // namespace

std::shared_ptr<DevToolsConnection> DevToolsConnection::Start(OwnedDescriptor toBrowser,
                                                              OwnedDescriptor fromBrowser,
                                                              OwnedDescriptor errorOutput,
                                                              std::function<void()> cleanUp) {
    const auto pipe = std::make_shared<DevToolsPipe>(std::move(toBrowser), std::move(fromBrowser),
                                                     std::move(errorOutput));
    const auto posts = std::make_shared<PostGuard>(
        [weak = std::weak_ptr(pipe)](std::string message) {
            if (const auto to = weak.lock()) to->Write(std::move(message), 0, std::nullopt);
        },
        GetSetting("ZRHTTP_REPEATED_POST").value == "1");
    const auto connection = std::make_shared<PipeConnection>(pipe, posts);
    const auto announce = [apartment = Apartment::OfThisThread(),
                           weak = std::weak_ptr<DevToolsConnection>(connection)] {
        apartment->Post([weak] {
            if (const auto self = weak.lock()) self->Dispatch();
        });
    };
    pipe->Start(posts, announce, std::move(cleanUp));
    return connection;
}

} // namespace platform
