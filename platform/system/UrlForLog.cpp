#include <platform/Diagnostics.h>

#include <algorithm>
#include <string>

// Anything that some reader of URLs could take for user information is left out, even where that
// costs a part of the URL: a log is read by people who must not see a password.
namespace platform {
namespace {

constexpr std::string_view kSlashes = "/\\";
constexpr auto kEnd = std::string_view::npos;

bool IsDigit(char ch) {
    return ch >= '0' && ch <= '9';
}

bool IsControl(char ch) {
    return static_cast<unsigned char>(ch) < 0x20 || ch == 0x7F;
}

bool StartsWithNoCase(std::string_view text, std::string_view lowerPrefix) {
    return CString(text.substr(0, lowerPrefix.size())).CompareNoCase(CString(lowerPrefix)) == 0;
}

// Browsers pass over leading blanks and control characters.
std::string_view WithoutLeadingBlanks(std::string_view url) {
    const auto* const first =
        std::find_if(url.begin(), url.end(), [](char ch) { return ch != ' ' && !IsControl(ch); });
    return url.substr(static_cast<std::size_t>(first - url.begin()));
}

std::size_t SkipSlashes(std::string_view text, std::size_t position) {
    return std::min(text.find_first_not_of(kSlashes, position), text.size());
}

// Where the authority begins. Browsers take any number of slashes, of either kind, after "http:".
std::size_t AuthorityBegin(std::string_view url) {
    if (StartsWithNoCase(url, "file://")) return 7;
    if (StartsWithNoCase(url, "http:")) return SkipSlashes(url, 5);
    if (StartsWithNoCase(url, "https:")) return SkipSlashes(url, 6);
    if (url.substr(0, 2) == "//") return 2;
    const std::size_t marker = url.find("://");
    return marker == kEnd ? 0 : marker + 3;
}

// What follows the host is no port: it is more likely the beginning of a password that holds a
// "/", "?" or "#".
bool HasImpossiblePort(std::string_view authority) {
    const std::size_t host = authority.substr(0, 1) == "[" ? authority.find(']') : 0;
    const std::size_t colon = authority.find(':', host == kEnd ? 0 : host);
    if (colon == kEnd) return false;
    const std::string_view port = authority.substr(colon + 1);
    return !std::all_of(port.begin(), port.end(), IsDigit);
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
    const std::size_t headEnd = std::min(url.find_first_of("?#"), url.size());
    const std::string_view head = url.substr(0, headEnd);
    const std::size_t begin = AuthorityBegin(head);
    const std::size_t pathBegin = std::min(head.find('/', begin), head.size());
    const std::string_view authority = head.substr(begin, pathBegin - begin);
    const std::size_t at = authority.rfind('@');

    std::string shown;
    AppendVisible(shown, head.substr(0, begin));
    if (at == kEnd && HasImpossiblePort(authority) && url.find('@', pathBegin) != kEnd) {
        shown += "...";
        return CString(shown);
    }
    AppendVisible(shown, authority.substr(at == kEnd ? 0 : at + 1));
    AppendVisible(shown, head.substr(pathBegin));
    if (headEnd < url.size() && url[headEnd] == '?') shown += "?...";
    return CString(shown);
}

} // namespace platform
