// Any bytes as a text to encode and to decode.

#include <algorithm>
#include <charconv>
#include <string>
#include <string_view>

#include <ZrHbHtmlTools.h>

#include "Check.h"

namespace {

using Tools = CZrHbHtmlTools;

std::string UrlDecoded(std::string_view text) {
    std::string decoded;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] != '%') {
            decoded += text[i] == '+' ? ' ' : text[i];
            continue;
        }
        Check(i + 2 < text.size());
        unsigned value = 0;
        const char* const digits = text.data() + i + 1;
        Check(std::from_chars(digits, digits + 2, value, 16).ptr == digits + 2);
        decoded += static_cast<char>(value);
        i += 2;
    }
    return decoded;
}

// The bytes whose character is the same one in the ANSI code page and as a code point.
std::string WithoutSpecials(std::string_view text) {
    std::string plain(text);
    std::erase_if(plain, [](char ch) {
        const auto byte = static_cast<unsigned char>(ch);
        return byte >= 128 && byte < 160;
    });
    return plain;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text(data, data + size);
    const CString encoded = Tools::URLEncodeString(CString(std::string_view(text)));
    Check(encoded.View().find_first_not_of("ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz"
                                           "0123456789%+") == std::string_view::npos);
    Check(UrlDecoded(encoded.View()) == text);

    const std::string plain = WithoutSpecials(text);
    const CString utf8 = Tools::AnsiToUTF8(CString(std::string_view(plain)));
    Check(Tools::UTF8ToAnsi(utf8).View() == plain);
    const auto isAscii = [](char ch) { return static_cast<unsigned char>(ch) < 128; };
    const auto ascii = std::count_if(plain.begin(), plain.end(), isAscii);
    Check(static_cast<std::size_t>(utf8.GetLength() + ascii) == 2 * plain.size());

    const CString ansi = Tools::UTF8ToAnsi(CString(std::string_view(text)));
    Check(static_cast<std::size_t>(ansi.GetLength()) <= text.size());
    return 0;
}
