#include "system/TerminalPrompt.h"

#include <algorithm>
#include <cctype>
#include <span>
#include <string>

#include <platform/CodePage.h>

namespace platform {
namespace {

constexpr UINT kButtonMask = 0x0F;
constexpr int kQuestions = 3;

struct Button {
    int id;
    char letter;
    const char* label;
};

constexpr Button kOk[] = {{IDOK, 'o', "[O]K"}};
constexpr Button kOkCancel[] = {{IDOK, 'o', "[O]K"}, {IDCANCEL, 'c', "[C]ancel"}};
constexpr Button kYesNo[] = {{IDYES, 'y', "[Y]es"}, {IDNO, 'n', "[N]o"}};
constexpr Button kYesNoCancel[] = {
    {IDYES, 'y', "[Y]es"}, {IDNO, 'n', "[N]o"}, {IDCANCEL, 'c', "[C]ancel"}};

std::span<const Button> ButtonsOf(UINT nType) {
    switch (nType & kButtonMask) {
    case MB_OKCANCEL:
        return kOkCancel;
    case MB_YESNO:
        return kYesNo;
    case MB_YESNOCANCEL:
        return kYesNoCancel;
    default:
        return kOk;
    }
}

// A text of the network must not steer the terminal.
std::string Visible(const CString& strText) {
    std::string shown;
    for (const char16_t ch : WideFromAnsi(strText.View())) {
        const bool isControl = (ch < 0x20 && ch != u'\n') || (ch >= 0x7F && ch <= 0x9F);
        shown += isControl ? std::string("\xEF\xBF\xBD") : Utf8FromWide({&ch, 1});
    }
    return shown;
}

// The button that the line names; 0 for none.
int ButtonNamedBy(const std::string& line, UINT nType) {
    const std::size_t first = line.find_first_not_of(" \t\r");
    if (first == std::string::npos) return HarmlessButton(nType);
    const int letter = std::tolower(static_cast<unsigned char>(line[first]));
    for (const Button& button : ButtonsOf(nType))
        if (button.letter == letter) return button.id;
    return 0;
}

// A line of text as it was typed. Control characters stand for keys that the terminal would take.
bool AskLine(const LineReader& readLine, std::ostream& output, const char* pszLabel,
             CString& strLine) {
    output << pszLabel << std::flush;
    std::string line;
    if (!readLine(line)) return false;
    if (line.ends_with('\r')) line.pop_back();
    if (std::any_of(line.begin(), line.end(),
                    [](unsigned char ch) { return ch < 0x20 || ch == 0x7F; }))
        return false;
    strLine = AnsiFromUtf8(line);
    return true;
}

} // namespace

int HarmlessButton(UINT nType) {
    switch (nType & kButtonMask) {
    case MB_YESNO:
    case MB_YESNOCANCEL:
        return IDNO;
    case MB_OKCANCEL:
        return IDCANCEL;
    default:
        return IDOK;
    }
}

int AskOnTerminal(const LineReader& readLine, std::ostream& output, const CString& strText,
                  UINT nType) {
    output << Visible(strText) << '\n';
    for (int attempt = 0; attempt < kQuestions; ++attempt) {
        for (const Button& button : ButtonsOf(nType))
            output << button.label << ' ';
        output << "> " << std::flush;
        std::string line;
        if (!readLine(line)) break;
        if (const int id = ButtonNamedBy(line, nType); id != 0) return id;
    }
    return HarmlessButton(nType);
}

bool AskNameOnTerminal(const LineReader& readLine, std::ostream& output, const CString& strText,
                       CString& strName) {
    output << Visible(strText) << '\n';
    const bool isGiven = AskLine(readLine, output, "Name: ", strName) && !strName.IsEmpty();
    if (!isGiven) output << '\n';
    return isGiven;
}

bool AskPasswordOnTerminal(const LineReader& readLine, std::ostream& output, CString& strPassword) {
    const bool isGiven = AskLine(readLine, output, "Password: ", strPassword);
    output << '\n'; // that of the user has not been shown
    return isGiven;
}

} // namespace platform
