#include <platform/Prompt.h>

#include <iostream>
#include <memory>
#include <string>

#include <unistd.h>

#include <platform/Diagnostics.h>

#include "system/TerminalInput.h"
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

class UserPrompt : public Prompt {
public:
    int Ask(const CString& strText, UINT nType) override {
        const auto readLine = [](std::string& line) {
            return ReadTerminalLine(line, [] { return false; });
        };
        if (IsSomebodyThere()) return AskOnTerminal(readLine, std::cerr, strText, nType);
        const int button = HarmlessButton(nType);
        CString strReport;
        strReport.Format("Nobody to ask; answered %s to: %s", NameOf(button),
                         FirstLine(strText).GetString());
        ReportDiagnostic(Severity::trace, strReport);
        return button;
    }

    bool AskCredentials(const CString& strText, CString& strName, CString& strPassword,
                        const std::function<bool()>& isWithdrawn) override {
        if (!IsSomebodyThere()) {
            ReportDiagnostic(Severity::trace,
                             "Nobody to ask; gave no name and password to: " + FirstLine(strText));
            return false;
        }
        const auto readLine = [&](std::string& line) {
            return ReadTerminalLine(line, isWithdrawn);
        };
        if (!AskNameOnTerminal(readLine, std::cerr, strText, strName)) return false;
        HiddenTyping hidden;
        return AskPasswordOnTerminal(
            [&](std::string& line) { return readLine(line) && !hidden.TakeInterrupt(line); },
            std::cerr, strPassword);
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
