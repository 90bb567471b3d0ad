#include "zrhttp/PageText.h"

#include <algorithm>
#include <bitset>
#include <charconv>
#include <cstdio>

#include <ZrHbHtmlTools.h>
#include <platform/CodePage.h>

#include "zrhttp/CharacterSets.h"
#include "zrhttp/Encodings.h"
#include "zrhttp/MetaEncoding.h"

namespace zrhttp {
namespace {

// The library reduces 8-bit text. What its code page lacks goes through in this disguise: the
// UTF-16 unit's number in hexadecimal digits between two controls that no text uses.
constexpr char16_t kDisguiseBegin = u'\x02';
constexpr char16_t kDisguiseEnd = u'\x03';
constexpr std::size_t kDisguiseDigits = 4;
constexpr std::size_t kDisguiseLength = kDisguiseDigits + 2;

constexpr char16_t kByteOrderMark = 0xFEFF;

std::bitset<0x10000> UnitsOfCodePage() {
    std::string bytes;
    for (int value = 0; value < 256; ++value)
        bytes += static_cast<char>(value);
    std::bitset<0x10000> units;
    for (const char16_t unit : platform::WideFromAnsi(bytes))
        units.set(unit);
    units.reset(kDisguiseBegin);
    return units;
}

void AppendDisguised(std::u16string& text, char16_t unit) {
    char digits[kDisguiseDigits + 1];
    std::snprintf(digits, sizeof digits, "%04X", static_cast<unsigned>(unit));
    text += kDisguiseBegin;
    text.append(digits, digits + kDisguiseDigits);
    text += kDisguiseEnd;
}

CString AnsiWithDisguises(std::u16string_view page) {
    const auto known = UnitsOfCodePage();
    std::u16string text;
    text.reserve(page.size());
    for (const char16_t unit : page)
        if (known.test(unit))
            text += unit;
        else if (unit != kDisguiseBegin)
            AppendDisguised(text, unit);
    return CString(platform::AnsiFromWide(text));
}

// The unit that the disguise at the beginning of the text stands for.
std::optional<char16_t> Undisguised(std::string_view text) {
    if (text.size() < kDisguiseLength || char16_t(text[0]) != kDisguiseBegin ||
        char16_t(text[kDisguiseLength - 1]) != kDisguiseEnd)
        return std::nullopt;
    const char* const end = text.data() + 1 + kDisguiseDigits;
    std::uint16_t number = 0;
    if (std::from_chars(text.data() + 1, end, number, 16).ptr != end) return std::nullopt;
    return char16_t{number};
}

std::string Utf8WithoutDisguises(std::string_view ansi) {
    std::u16string text;
    text.reserve(ansi.size());
    while (!ansi.empty()) {
        const std::size_t plain = std::min(ansi.find(char(kDisguiseBegin)), ansi.size());
        text += platform::WideFromAnsi(ansi.substr(0, plain));
        ansi.remove_prefix(plain);
        const auto unit = Undisguised(ansi);
        if (unit) text += *unit;
        // A control that a reference stands for has nothing behind it to be left out.
        ansi.remove_prefix(std::min(unit ? kDisguiseLength : 1, ansi.size()));
    }
    return platform::Utf8FromWide(text);
}

} // namespace

std::string EncodingOfPage(std::string_view page) {
    if (page.starts_with("\xEF\xBB\xBF")) return "UTF-8";
    if (page.starts_with("\xFE\xFF")) return "UTF-16BE";
    if (page.starts_with("\xFF\xFE")) return "UTF-16LE";
    if (auto declared = EncodingFromMeta(page)) return *declared;
    return IsUtf8(page) ? "UTF-8" : "WINDOWS-1252";
}

std::string PageAsText(std::string_view page, const std::string& encoding, bool isCompact) {
    const std::string utf8 =
        Utf8FromEncoding(page, encoding.empty() ? EncodingOfPage(page) : encoding);
    const std::u16string wide = platform::WideFromUtf8(utf8);
    std::u16string_view content = wide;
    if (content.starts_with(kByteOrderMark)) content.remove_prefix(1);
    CString text = AnsiWithDisguises(content);
    CZrHbHtmlTools::HtmlPageMakePureText(text, isCompact ? 1 : 0);
    return Utf8WithoutDisguises(text.View());
}

} // namespace zrhttp
