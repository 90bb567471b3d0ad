#include <platform/Prompt.h>

#include <iostream>
#include <memory>

#include <termios.h>
#include <unistd.h>

#include <platform/Diagnostics.h>

#include "system/TerminalPrompt.h"

namespace platform {
namespace {

// A process in the background would be stopped by reading the terminal.
bool IsSomebodyThere() {
    return ::isatty(STDIN_FILENO) && ::isatty(STDERR_FILENO) &&
           ::tcgetpgrp(STDIN_FILENO) == ::getpgrp();
}

const char* NameOf(int button) {
    switch (button) {
    case IDYES:
        return "Yes";
    case IDNO:
        return "No";
    case IDCANCEL:
        return "Cancel";
    default:
        return "OK";
    }
}

// A text's further lines may show what belongs in no log (what a form would have sent).
CString FirstLine(const CString& strText) {
    const int end = strText.Find('\n');
    return end < 0 ? strText : strText.Left(end);
}

// While it lives, the terminal shows nothing of what is typed, and the keys that would end the
// program, and leave the terminal so, are characters.
class HiddenTyping {
public:
    HiddenTyping() {
        m_isSet = ::tcgetattr(STDIN_FILENO, &m_before) == 0;
        termios hidden = m_before;
        hidden.c_lflag &= ~static_cast<tcflag_t>(ECHO | ISIG);
        if (m_isSet) ::tcsetattr(STDIN_FILENO, TCSADRAIN, &hidden);
    }
    ~HiddenTyping() {
        if (m_isSet) ::tcsetattr(STDIN_FILENO, TCSADRAIN, &m_before);
    }
    HiddenTyping(const HiddenTyping&) = delete;
    HiddenTyping& operator=(const HiddenTyping&) = delete;

private:
    termios m_before{};
    bool m_isSet = false;
};

class UserPrompt : public Prompt {
public:
    int Ask(const CString& strText, UINT nType) override {
        if (IsSomebodyThere()) return AskOnTerminal(std::cin, std::cerr, strText, nType);
        const int button = HarmlessButton(nType);
        CString strReport;
        strReport.Format("Nobody to ask; answered %s to: %s", NameOf(button),
                         FirstLine(strText).GetString());
        ReportDiagnostic(Severity::trace, __FILE__, __LINE__, strReport);
        return button;
    }

    bool AskCredentials(const CString& strText, CString& strName, CString& strPassword) override {
        if (!IsSomebodyThere()) {
            ReportDiagnostic(Severity::trace, __FILE__, __LINE__,
                             "Nobody to ask; gave no name and password to: " + FirstLine(strText));
            return false;
        }
        if (!AskNameOnTerminal(std::cin, std::cerr, strText, strName)) return false;
        const HiddenTyping hidden;
        return AskPasswordOnTerminal(std::cin, std::cerr, strPassword);
    }
};

} // namespace

Prompt& Prompt::Real() {
    static UserPrompt& prompt = *std::make_unique<UserPrompt>().release();
    return prompt;
}

} // namespace platform

int AfxMessageBox(const char* pszText, UINT nType) {
    return platform::Current<platform::Prompt>().Ask(pszText, nType);
}
