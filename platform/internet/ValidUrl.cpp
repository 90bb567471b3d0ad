#include <algorithm>
#include <string>
#include <string_view>

#include <platform/Internet.h>

#include "browser/common/PageUrl.h"
#include "internet/CurlUrl.h"

namespace {

constexpr std::string_view kSchemes[] = {"http", "https", "ftp", "file"};

bool IsHexDigit(char16_t ch) {
    return (ch >= u'0' && ch <= u'9') || (ch >= u'A' && ch <= u'F') || (ch >= u'a' && ch <= u'f');
}

// What a URL may hold outside the host: unreserved and reserved characters but brackets and "#".
bool IsUrlCharacter(char16_t ch) {
    constexpr std::u16string_view marks = u"-._~:/?@!$&'()*+,;=";
    return (ch >= u'0' && ch <= u'9') || (ch >= u'A' && ch <= u'Z') || (ch >= u'a' && ch <= u'z') ||
           marks.find(ch) != std::u16string_view::npos;
}

bool HasOnlyUrlCharacters(std::u16string_view text) {
    for (std::size_t at = 0; at < text.size(); ++at) {
        if (text[at] == u'%') {
            if (text.size() - at < 3 || !IsHexDigit(text[at + 1]) || !IsHexDigit(text[at + 2]))
                return false;
        } else if (!IsUrlCharacter(text[at])) {
            return false;
        }
    }
    return true;
}

// Brackets belong around an address of IPv6, "#" before the fragment, and nowhere else.
bool IsSpelledWell(std::u16string_view url) {
    std::u16string rest(url);
    if (const auto hash = rest.find(u'#'); hash != std::u16string::npos) rest.erase(hash, 1);
    const std::size_t authority = rest.find(u"//");
    const std::size_t end = rest.find_first_of(u"/?", authority + 2);
    if (const auto open = rest.find(u'['); authority != std::u16string::npos && open < end) {
        const std::size_t close = rest.find(u']', open);
        if (close == std::u16string::npos || close > end) return false;
        rest.erase(close, 1).erase(open, 1);
    }
    return HasOnlyUrlCharacters(rest);
}

bool IsValid(std::u16string_view wide) {
    if (!IsSpelledWell(wide)) return false;
    const std::string url(wide.begin(), wide.end()); // ASCII
    const std::string scheme = platform::SchemeOf(url);
    if (std::find(std::begin(kSchemes), std::end(kSchemes), scheme) == std::end(kSchemes))
        return false;
    const std::string_view rest = std::string_view(url).substr(scheme.size() + 1);
    if (scheme == "file") return rest.starts_with("/");
    // The URL library would pass over further slashes to find a host.
    if (!rest.starts_with("//") || rest.size() < 3 || rest[2] == '/') return false;
    const auto parsed = platform::CurlUrl::Parse(url);
    return parsed && !parsed->Host().empty();
}

} // namespace

HRESULT IsValidURL(void*, const char16_t* pszUrl, DWORD) {
    return pszUrl && IsValid(pszUrl) ? S_OK : S_FALSE;
}
