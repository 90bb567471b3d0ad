// Any bytes as a text to encode and to decode.

#include <algorithm>

#include <ZrHbHtmlTools.h>

#include "Check.h"

namespace {

using Tools = CZrHbHtmlTools;

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
    const std::string_view text = AsText(data, size);
    const CString encoded = Tools::URLEncodeString(CString(text));
    Check(encoded.View().find_first_not_of("ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz"
                                           "0123456789%+") == std::string_view::npos);
    Check(UrlDecoded(encoded.View()) == text);

    const std::string plain = WithoutSpecials(text);
    const CString utf8 = Tools::AnsiToUTF8(CString(std::string_view(plain)));
    Check(Tools::UTF8ToAnsi(utf8).View() == plain);
    const auto isAscii = [](char ch) { return static_cast<unsigned char>(ch) < 128; };
    const auto ascii = std::count_if(plain.begin(), plain.end(), isAscii);
    Check(static_cast<std::size_t>(utf8.GetLength() + ascii) == 2 * plain.size());

    const CString ansi = Tools::UTF8ToAnsi(CString(text));
    Check(static_cast<std::size_t>(ansi.GetLength()) <= text.size());
    return 0;
}
