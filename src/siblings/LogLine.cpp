#include "siblings/LogLine.h"

#include <cstdio>

#include <platform/CodePage.h>
#include <platform/Secrets.h>
#include <platform/Time.h>

namespace {

constexpr std::size_t kLongestText = std::size_t{64} * 1024; // bytes

bool IsControl(char ch) {
    switch (const auto byte = static_cast<unsigned char>(ch)) {
    case 0x7F:
    case 0x81: // these five have no character in the code page and would become controls
    case 0x8D:
    case 0x8F:
    case 0x90:
    case 0x9D:
        return true;
    default:
        return byte < 0x20;
    }
}

std::string EscapeOne(char ch) {
    if (ch == '\n') return "\\n";
    if (ch == '\r') return "\\r";
    if (ch == '\t') return "\\t";
    char escape[5];
    std::snprintf(escape, sizeof escape, "\\x%02X", static_cast<unsigned>(ch) & 0xFFu);
    return escape;
}

std::string_view BaseName(std::string_view file) {
    return file.substr(file.find_last_of("/\\") + 1); // npos + 1 is 0
}

// Cut after masking, so that no secret loses the part by which it is known.
std::string LoggableText(std::string_view text) {
    std::string masked = platform::MaskSecrets(text);
    if (masked.size() > kLongestText) {
        masked.resize(kLongestText);
        masked += "...";
    }
    return platform::Utf8FromAnsi(EscapeControls(masked));
}

} // namespace

std::string EscapeControls(std::string_view text) {
    std::string escaped;
    escaped.reserve(text.size());
    for (const char ch : text) {
        if (IsControl(ch))
            escaped += EscapeOne(ch);
        else
            escaped += ch;
    }
    return escaped;
}

std::string FormatLogLine(const LogRecord& record) {
    std::string line = CTime::GetCurrentTime().FormatGmt("%Y-%m-%dT%H:%M:%SZ").GetString();
    line += "\tgroup " + std::to_string(static_cast<int>(record.group));
    line += record.isError ? "\terror\t" : "\ttrace\t";
    line += platform::Utf8FromAnsi(EscapeControls(BaseName(record.sourceFile)));
    line += ":" + std::to_string(record.sourceLine) + "\t";
    line += LoggableText(record.text) + "\n";
    return line;
}
