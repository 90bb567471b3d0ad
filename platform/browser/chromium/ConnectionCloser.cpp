#include "browser/chromium/ConnectionCloser.h"

#include <utility>

namespace platform {
namespace {

using namespace std::chrono_literals;

constexpr const char* kPage = "chrome://net-internals/#sockets";
constexpr auto kAnswerPatience = 10s;
// The page is being shown while it is asked; each of its documents on the way drops the question.
constexpr int kMaxTries = 20;
constexpr const char* kNoSuchPage = "no such page";

// Waits for the page, has it close connections, and asks something that takes the same way to the
// network service: when the answer is there, they are closed.
std::string Script(ConnectionCloser::Which which) {
    const char* const pszMessage =
        which == ConnectionCloser::Which::all ? "flushSocketPools" : "closeIdleSockets";
    return std::string(R"((async () => {
  const end = Date.now() + 8000;
  while (location.protocol == 'about:' || document.readyState != 'complete') {
    if (Date.now() > end) throw new Error('the page does not load');
    await new Promise(done => setTimeout(done, 2));
  }
  if (typeof chrome != 'object' || typeof chrome.send != 'function')
    throw new Error(')") +
           kNoSuchPage + R"(');
  const {sendWithPromise} = await import('chrome://resources/js/cr.js');
  chrome.send(')" +
           pszMessage + R"(');
  await sendWithPromise('hstsQuery', 'x.invalid');
})())";
}

} // namespace

void ConnectionCloser::Close(Which which, Done done) {
    m_which = which;
    m_done = std::move(done);
    m_deadline = std::chrono::steady_clock::now() + kAnswerPatience;
    m_tries = 0;
    if (m_session.empty())
        MakePage();
    else
        Evaluate();
}

// Hidden, so that no window shows it.
void ConnectionCloser::MakePage() {
    Json params{{"url", kPage}, {"hidden", true}, {"background", true}};
    if (!m_context.empty()) params["browserContextId"] = m_context;
    m_call = m_send({}, "Target.createTarget", std::move(params));
}

void ConnectionCloser::Attach(const Json& result) {
    m_target = TextOf(result, "targetId");
    m_call = m_send({}, "Target.attachToTarget", {{"targetId", m_target}, {"flatten", true}});
}

void ConnectionCloser::Evaluate() {
    m_call = m_send(m_session, "Runtime.evaluate",
                    {{"expression", Script(m_which)}, {"awaitPromise", true}});
}

void ConnectionCloser::OnReply(int call, const Json& message) {
    if (call != m_call || !m_done) return;
    const Json& result = ObjectOf(message, "result");
    if (!m_session.empty()) return OnEvaluated(message);
    if (FindValue(message, "error")) return End(Outcome::impossible);
    if (m_target.empty()) return Attach(result);
    m_session = TextOf(result, "sessionId");
    Evaluate();
}

void ConnectionCloser::OnEvaluated(const Json& message) {
    if (FindValue(message, "error")) return TryAgain(TextOf(ObjectOf(message, "error"), "message"));
    const Json& details = ObjectOf(ObjectOf(message, "result"), "exceptionDetails");
    if (details.empty()) return End(Outcome::closed);
    const std::string text = TextOf(ObjectOf(details, "exception"), "description");
    End(text.find(kNoSuchPage) == std::string::npos ? Outcome::failed : Outcome::impossible);
}

// The page has gone on to another document, or has gone.
void ConnectionCloser::TryAgain(const std::string& error) {
    if (++m_tries > kMaxTries) return End(Outcome::failed);
    const bool isThere = !m_session.empty() && error.find("Session") == std::string::npos &&
                         error.find("crashed") == std::string::npos;
    if (isThere) return Evaluate();
    RemovePage();
    MakePage();
}

void ConnectionCloser::End(Outcome outcome) {
    if (outcome != Outcome::closed) RemovePage();
    if (const Done done = std::exchange(m_done, nullptr)) done(outcome);
}

bool ConnectionCloser::TakeEvent(const Json& event) {
    const std::string session = TextOf(event, "sessionId");
    if (!session.empty()) return session == m_session;
    const Json& params = ObjectOf(event, "params");
    if (TextOf(event, "method") == "Target.detachedFromTarget") return TakeEnd(params);
    const Json& target = ObjectOf(params, "targetInfo");
    const bool isOwn = !m_target.empty() && TextOf(target, "targetId") == m_target;
    // A browser that does not hide it is one that has no such page either.
    if (isOwn && TextOf(target, "type") == "page") End(Outcome::impossible);
    return isOwn;
}

bool ConnectionCloser::TakeEnd(const Json& params) {
    if (m_session.empty() || TextOf(params, "sessionId") != m_session) return false;
    m_target.clear();
    m_session.clear();
    if (m_done) TryAgain({});
    return true;
}

void ConnectionCloser::RemovePage() {
    if (!m_target.empty()) m_send({}, "Target.closeTarget", {{"targetId", m_target}});
    m_target.clear();
    m_session.clear();
}

} // namespace platform
