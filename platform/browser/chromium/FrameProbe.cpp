#include "browser/chromium/FrameProbe.h"

#include "browser/chromium/ChromiumPage.h"

namespace platform {
namespace {

// The idle callback comes behind scripts that have arrived and behind the requests that they make.
constexpr const char* kQuestion =
    "(isParsing => new Promise(answer => {"
    " const tell = () => requestIdleCallback(() => answer(document.readyState), {timeout: 1000});"
    " if (isParsing || document.readyState !== 'loading') tell();"
    " else document.addEventListener('DOMContentLoaded', tell);"
    "}))";

} // namespace

void FrameProbe::Ask(ChromiumPage& page, const Questions& questions,
                     std::function<void(const Answers&)> onAnswers) {
    m_onAnswers = std::move(onAnswers);
    m_expected = questions.size();
    for (const auto& [frame, question] : questions)
        AskFrame(page, frame, question);
}

void FrameProbe::AskFrame(ChromiumPage& page, const std::string& frame, const Question& question) {
    page.SendTo(question.session, "Page.createIsolatedWorld", {{"frameId", frame}},
                [self = shared_from_this(), weak = page.weak_from_this(), frame,
                 question](DevToolsReply& world) {
                    const auto asked = weak.lock();
                    if (!asked || !world.IsOk()) return self->Note(frame, {});
                    asked->SendTo(question.session, "Runtime.evaluate",
                                  {{"contextId", NumberOf(world.result, "executionContextId")},
                                   {"expression", std::string(kQuestion) +
                                                      (question.isParsing ? "(true)" : "(false)")},
                                   {"awaitPromise", true}},
                                  [self, frame](DevToolsReply& reply) {
                                      const Json& result = ObjectOf(reply.result, "result");
                                      self->Note(frame, TextOf(result, "value"));
                                  });
                });
}

void FrameProbe::Note(const std::string& frame, std::string state) {
    m_answers[frame] = std::move(state);
    if (m_answers.size() == m_expected) m_onAnswers(m_answers);
}

} // namespace platform
