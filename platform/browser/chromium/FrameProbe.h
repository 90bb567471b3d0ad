// Asks renderers what no event tells: how far documents have come once there is nothing else to do.
#pragma once

#include <cstddef>
#include <functional>
#include <map>
#include <memory>
#include <string>

namespace platform {

class ChromiumPage;

// One question to several frames. Pages cannot see or change what is asked.
class FrameProbe : public std::enable_shared_from_this<FrameProbe> {
public:
    struct Question {
        std::string session;
        bool isParsing = false; // answered at once, else when the document has been parsed
    };
    using Questions = std::map<std::string, Question>; // by frame
    // document.readyState by frame; empty of a frame that does not answer.
    using Answers = std::map<std::string, std::string>;

    // `onAnswers` runs once, behind the last answer. A frame that goes away may never give one.
    void Ask(ChromiumPage& page, const Questions& questions,
             std::function<void(const Answers&)> onAnswers);

private:
    void AskFrame(ChromiumPage& page, const std::string& frame, const Question& question);
    void Note(const std::string& frame, std::string state);

    std::function<void(const Answers&)> m_onAnswers;
    std::size_t m_expected = 0;
    Answers m_answers;
};

} // namespace platform
