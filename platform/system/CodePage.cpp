#include <platform/CodePage.h>

#include <algorithm>
#include <iterator>
#include <utility>

namespace platform {
namespace {

// Windows-1252 from 0x80 to 0x9F; everywhere else a byte and its character have one number.
constexpr char16_t kFirstSpecial = 0x80;
constexpr char16_t kSpecials[] = {0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,
                                  0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0x008D, 0x017D, 0x008F,
                                  0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
                                  0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};
static_assert(std::size(kSpecials) == 32);

constexpr char32_t kReplacement = 0xFFFD;
constexpr char32_t kFirstSupplementary = 0x10000;

constexpr bool IsHighSurrogate(char32_t unit) {
    return unit >= 0xD800 && unit <= 0xDBFF;
}
constexpr bool IsLowSurrogate(char32_t unit) {
    return unit >= 0xDC00 && unit <= 0xDFFF;
}

constexpr bool IsSpecial(char32_t number) {
    return number >= kFirstSpecial && number < kFirstSpecial + std::size(kSpecials);
}

char16_t WideFromByte(char ch) {
    const auto byte = static_cast<unsigned char>(ch);
    return IsSpecial(byte) ? kSpecials[byte - kFirstSpecial] : char16_t{byte};
}

char ByteFromCodePoint(char32_t codePoint) {
    if (codePoint <= 0xFF && !IsSpecial(codePoint)) return static_cast<char>(codePoint);
    const auto* const hit = std::find(std::begin(kSpecials), std::end(kSpecials), codePoint);
    if (hit == std::end(kSpecials)) return '?';
    return static_cast<char>(kFirstSpecial + (hit - std::begin(kSpecials)));
}

// The character that begins at `position`, which moves behind it.
char32_t TakeFromWide(std::u16string_view wide, std::size_t& position) {
    const char32_t unit = wide[position++];
    if (!IsHighSurrogate(unit)) return IsLowSurrogate(unit) ? kReplacement : unit;
    if (position == wide.size() || !IsLowSurrogate(wide[position])) return kReplacement;
    const char32_t low = wide[position++];
    return kFirstSupplementary + ((unit - 0xD800) << 10) + (low - 0xDC00);
}

void AppendWide(std::u16string& wide, char32_t codePoint) {
    if (codePoint < kFirstSupplementary) {
        wide += static_cast<char16_t>(codePoint);
        return;
    }
    const char32_t offset = codePoint - kFirstSupplementary;
    wide += static_cast<char16_t>(0xD800 + (offset >> 10));
    wide += static_cast<char16_t>(0xDC00 + (offset & 0x3FF));
}

void AppendUtf8(std::string& utf8, char32_t codePoint) {
    const auto tail = [&](int shift) {
        utf8 += static_cast<char>(0x80 | ((codePoint >> shift) & 0x3F));
    };
    if (codePoint < 0x80) {
        utf8 += static_cast<char>(codePoint);
    } else if (codePoint < 0x800) {
        utf8 += static_cast<char>(0xC0 | (codePoint >> 6));
        tail(0);
    } else if (codePoint < kFirstSupplementary) {
        utf8 += static_cast<char>(0xE0 | (codePoint >> 12));
        tail(6);
        tail(0);
    } else {
        utf8 += static_cast<char>(0xF0 | (codePoint >> 18));
        tail(12);
        tail(6);
        tail(0);
    }
}

// What a first byte promises: how many bytes follow, its own bits of the number, and the range of
// the second byte (narrower than 80 to BF where that would be too long a form, a surrogate, or
// beyond U+10FFFF).
struct Utf8Lead {
    int tails = 0;
    char32_t bits = 0;
    unsigned char lowest = 0x80;
    unsigned char highest = 0xBF;
    bool valid = true;
};

Utf8Lead ReadLead(unsigned char byte) {
    if (byte < 0x80) return {.tails = 0, .bits = byte};
    if (byte >= 0xC2 && byte <= 0xDF) return {.tails = 1, .bits = byte & 0x1Fu};
    if (byte == 0xE0) return {.tails = 2, .bits = 0, .lowest = 0xA0};
    if (byte == 0xED) return {.tails = 2, .bits = 0xD, .highest = 0x9F};
    if (byte >= 0xE1 && byte <= 0xEF) return {.tails = 2, .bits = byte & 0x0Fu};
    if (byte == 0xF0) return {.tails = 3, .bits = 0, .lowest = 0x90};
    if (byte >= 0xF1 && byte <= 0xF3) return {.tails = 3, .bits = byte & 0x07u};
    if (byte == 0xF4) return {.tails = 3, .bits = 4, .highest = 0x8F};
    return {.valid = false};
}

// The character that begins at `position`, which moves behind it; for a broken one behind the
// part that could have been the beginning of a character.
char32_t TakeFromUtf8(std::string_view utf8, std::size_t& position) {
    Utf8Lead lead = ReadLead(static_cast<unsigned char>(utf8[position++]));
    if (!lead.valid) return kReplacement;
    char32_t codePoint = lead.bits;
    for (int tail = 0; tail < lead.tails; ++tail) {
        if (position == utf8.size()) return kReplacement;
        const auto byte = static_cast<unsigned char>(utf8[position]);
        if (byte < lead.lowest || byte > lead.highest) return kReplacement;
        lead.lowest = 0x80;
        lead.highest = 0xBF;
        codePoint = (codePoint << 6) | (byte & 0x3Fu);
        ++position;
    }
    return codePoint;
}

} // namespace

std::u16string WideFromAnsi(std::string_view ansi) {
    std::u16string wide(ansi.size(), u'\0');
    std::transform(ansi.begin(), ansi.end(), wide.begin(), WideFromByte);
    return wide;
}

std::string AnsiFromWide(std::u16string_view wide) {
    std::string ansi;
    ansi.reserve(wide.size());
    for (std::size_t position = 0; position < wide.size();)
        ansi += ByteFromCodePoint(TakeFromWide(wide, position));
    return ansi;
}

std::u16string WideFromUtf8(std::string_view utf8) {
    std::u16string wide;
    wide.reserve(utf8.size());
    for (std::size_t position = 0; position < utf8.size();)
        AppendWide(wide, TakeFromUtf8(utf8, position));
    return wide;
}

std::string Utf8FromWide(std::u16string_view wide) {
    std::string utf8;
    utf8.reserve(wide.size());
    for (std::size_t position = 0; position < wide.size();)
        AppendUtf8(utf8, TakeFromWide(wide, position));
    return utf8;
}

CString AnsiFromUtf8(std::string_view utf8) {
    std::string ansi;
    ansi.reserve(utf8.size());
    for (std::size_t position = 0; position < utf8.size();)
        ansi += ByteFromCodePoint(TakeFromUtf8(utf8, position));
    return CString(std::move(ansi));
}

std::string Utf8FromAnsi(std::string_view ansi) {
    std::string utf8;
    utf8.reserve(ansi.size());
    for (const char ch : ansi)
        AppendUtf8(utf8, WideFromByte(ch));
    return utf8;
}

} // namespace platform
