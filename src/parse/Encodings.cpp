// Texts for the wire: URL encoding and UTF-8.

#include <ZrHbHtmlTools.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <functional>
#include <numeric>
#include <string>

#include <platform/CodePage.h>

#include "parse/AsciiText.h"

namespace {

// What a byte becomes in application/x-www-form-urlencoded data.
struct UrlForm {
    char text[3];
    unsigned char length;
};

constexpr bool StaysInUrl(char ch) {
    return IsAsciiDigit(ch) || IsAsciiUpper(ch) || IsAsciiLower(ch);
}

constexpr UrlForm UrlFormOf(unsigned char byte) {
    constexpr char kHexDigits[] = "0123456789ABCDEF";
    const char ch = static_cast<char>(byte);
    if (ch == ' ') return {{'+', 0, 0}, 1};
    if (StaysInUrl(ch)) return {{ch, 0, 0}, 1};
    return {{'%', kHexDigits[byte / 16], kHexDigits[byte % 16]}, 3};
}

constexpr auto kUrlForms = [] {
    std::array<UrlForm, 256> forms{};
    for (unsigned byte = 0; byte < forms.size(); ++byte)
        forms[byte] = UrlFormOf(static_cast<unsigned char>(byte));
    return forms;
}();

const UrlForm& UrlFormAt(char ch) {
    return kUrlForms[static_cast<unsigned char>(ch)];
}

bool IsAscii(char ch) {
    return static_cast<unsigned char>(ch) < 0x80;
}

} // namespace

CString CZrHbHtmlTools::URLEncodeString(const CString& strText) {
    const std::string_view text = strText.View();
    const std::size_t length =
        std::transform_reduce(text.begin(), text.end(), std::size_t{0}, std::plus{},
                              [](char ch) -> std::size_t { return UrlFormAt(ch).length; });

    // Forms are written whole, being fastest to copy so, each over what does not count of the last.
    std::string encoded(length + sizeof(UrlForm), '\0');
    char* out = encoded.data();
    for (const char ch : text) {
        const UrlForm& form = UrlFormAt(ch);
        std::memcpy(out, &form, sizeof(form));
        out += form.length;
    }
    encoded.resize(length);
    return CString(std::move(encoded));
}

CString CZrHbHtmlTools::AnsiToUTF8(const CString& strText) {
    const std::string_view text = strText.View();
    const auto ascii = std::count_if(text.begin(), text.end(), IsAscii);
    std::string utf8(2 * text.size() - static_cast<std::size_t>(ascii), '\0');
    char* out = utf8.data();
    for (const char ch : text) {
        const auto byte = static_cast<unsigned char>(ch);
        if (byte >= 0x80) *out++ = static_cast<char>(0xC0 | (byte >> 6));
        *out++ = static_cast<char>(byte < 0x80 ? byte : 0x80 | (byte & 0x3F));
    }
    return CString(std::move(utf8));
}

CString CZrHbHtmlTools::UTF8ToAnsi(const CString& strUtf8) {
    return platform::AnsiFromUtf8(strUtf8.View());
}
