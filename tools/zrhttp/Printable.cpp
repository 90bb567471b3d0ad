#include "zrhttp/Printable.h"

#include <cstdio>

#include <platform/CodePage.h>

namespace zrhttp {
namespace {

bool IsC0OrDelete(char16_t unit) {
    return unit < 0x20 || unit == 0x7F;
}

// C1 controls, and the marks, embeddings, overrides and isolates of the writing direction.
bool IsHidden(char16_t unit) {
    return (unit >= 0x80 && unit <= 0x9F) || unit == 0x200E || unit == 0x200F ||
           (unit >= 0x202A && unit <= 0x202E) || (unit >= 0x2066 && unit <= 0x2069);
}

void AppendVisible(std::u16string& text, char16_t unit) {
    if (IsC0OrDelete(unit)) {
        text += u'^';
        text += static_cast<char16_t>(unit ^ 0x40); // the key that is pressed with Control
        return;
    }
    char name[sizeof "<U+0000>"];
    std::snprintf(name, sizeof name, "<U+%04X>", static_cast<unsigned>(unit));
    text.append(name, name + sizeof name - 1);
}

bool IsLayout(std::u16string_view text, std::size_t position) {
    const char16_t unit = text[position];
    if (unit == u'\t' || unit == u'\n') return true;
    return unit == u'\r' && position + 1 < text.size() && text[position + 1] == u'\n';
}

std::string Printable(std::string_view utf8, bool keepLayout) {
    const std::u16string source = platform::WideFromUtf8(utf8);
    std::u16string text;
    text.reserve(source.size());
    for (std::size_t i = 0; i < source.size(); ++i) {
        const char16_t unit = source[i];
        if (!IsC0OrDelete(unit) && !IsHidden(unit))
            text += unit;
        else if (keepLayout && IsLayout(source, i))
            text += unit;
        else
            AppendVisible(text, unit);
    }
    return platform::Utf8FromWide(text);
}

} // namespace

std::string PrintableLine(std::string_view utf8) {
    return Printable(utf8, false);
}
std::string PrintableText(std::string_view utf8) {
    return Printable(utf8, true);
}

} // namespace zrhttp
