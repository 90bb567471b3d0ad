#include <algorithm>

#include <platform/Secrets.h>

#include "system/SecretMask.h"

namespace platform {
namespace {

bool IsControl(char ch) {
    return static_cast<unsigned char>(ch) < 0x20 || ch == 0x7F;
}

// Browsers pass over leading blanks and control characters.
std::string_view WithoutLeadingBlanks(std::string_view url) {
    const auto* const first =
        std::find_if(url.begin(), url.end(), [](char ch) { return ch != ' ' && !IsControl(ch); });
    return url.substr(static_cast<std::size_t>(first - url.begin()));
}

void AppendVisible(std::string& out, std::string_view text) {
    constexpr char kHexDigits[] = "0123456789ABCDEF";
    for (const char ch : text) {
        if (IsControl(ch)) {
            out += "\\x";
            out += kHexDigits[static_cast<unsigned char>(ch) >> 4];
            out += kHexDigits[static_cast<unsigned char>(ch) & 0xF];
        } else {
            out += ch;
        }
    }
}

} // namespace

CString UrlForLog(std::string_view url) {
    url = WithoutLeadingBlanks(url);
    const bool hasScheme = url.find("//") != url.npos || url.find(":\\") != url.npos;
    const std::string masked =
        MaskSecretsIn(url, hasScheme ? TextBegin::anywhere : TextBegin::authority);
    const std::size_t end = std::min(masked.find_first_of("?#"), masked.size());
    std::string shown;
    AppendVisible(shown, std::string_view(masked).substr(0, end));
    if (end < masked.size() && masked[end] == '?') shown += "?...";
    return CString(shown);
}

} // namespace platform
