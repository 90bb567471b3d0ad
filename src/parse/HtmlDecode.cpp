// Decoding a page's character references, with its lines set on request.

#include <ZrHbHtmlTools.h>

#include "parse/CharacterReferences.h"
#include "parse/InPlaceWriter.h"

namespace {

bool IsLineBreakTag(std::string_view text) {
    return text.starts_with("<br>") || text.starts_with("<BR>");
}

// Line ends count as blanks, "<br>" as line feed; one blank remains of several, and none beside a
// line feed.
std::size_t SetLines(char* text, std::size_t length) {
    const std::string_view page(text, length);
    InPlaceWriter lines(text);
    bool blanks = false;
    for (std::size_t position = 0; position < length;) {
        const char ch = page[position];
        if (ch == ' ' || ch == '\n' || ch == '\r') {
            blanks = true;
            ++position;
            continue;
        }
        const bool isBreak = ch == '<' && IsLineBreakTag(page.substr(position));
        if (blanks && !isBreak && !lines.View().ends_with('\n')) lines.Put(' ');
        blanks = false;
        lines.Put(isBreak ? '\n' : ch);
        position += isBreak ? std::string_view("<br>").size() : 1;
    }
    if (blanks && !lines.View().ends_with('\n')) lines.Put(' ');
    return lines.Length();
}

} // namespace

void CZrHbHtmlTools::HtmlPageDecode(CString& page, int nFormat) {
    RewriteInPlace(page, DecodeReferences);
    if (nFormat) RewriteInPlace(page, SetLines);
}
