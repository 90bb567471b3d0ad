// Any bytes as a page: what the text tools promise of their results.

#include <algorithm>
#include <string>
#include <string_view>

#include <ZrHbHtmlTools.h>

#include "Check.h"

namespace {

using Tools = CZrHbHtmlTools;
constexpr std::size_t kNone = std::string_view::npos;

bool Contains(std::string_view text, std::string_view part) {
    return text.find(part) != kNone;
}

std::string Upper(std::string_view text) {
    std::string upper(text);
    std::transform(upper.begin(), upper.end(), upper.begin(), [](char ch) {
        return ch >= 'a' && ch <= 'z' ? static_cast<char>(ch - 'a' + 'A') : ch;
    });
    return upper;
}

void CheckTags(std::string_view text) {
    CString page(text);
    Tools::HtmlPageRemoveTags(page);
    Check(!Contains(page.View(), "<"));
    Check(std::count(text.begin(), text.end(), '<') <=
          std::count(page.View().begin(), page.View().end(), ' '));
    if (!Contains(text, "<")) Check(page.View() == text);
}

void CheckDecoding(std::string_view text) {
    CString page(text);
    Tools::HtmlPageDecode(page, 0);
    Check(!Contains(page.View(), "&"));
    Check(static_cast<std::size_t>(page.GetLength()) <= text.size());
    CString lines(text);
    Tools::HtmlPageDecode(lines, 1);
    for (const char* part : {"&", "\r", "<br>", "<BR>", "  ", " \n", "\n "})
        Check(!Contains(lines.View(), part));
}

void CheckPureText(std::string_view text, int compact) {
    CString page(text);
    Tools::HtmlPageMakePureText(page, compact);
    const std::string_view pure = page.View();
    Check(pure.ends_with('\n'));
    for (const char* part : {"&", "\1", "\t", "  ", " \n", "\n ", "\n\n\n"})
        Check(!Contains(pure, part));
    if (compact) Check(!Contains(pure, "\n\n"));
    if (pure.size() == 1) return;
    for (const char edge : {pure.front(), pure[pure.size() - 2]})
        Check(!Contains(" \t\r\n\v\f", std::string_view(&edge, 1)));
}

// The first two lines are the start text and the end text of the sections.
void CheckSections(std::string_view text) {
    const std::size_t behindStart = text.find('\n');
    if (behindStart == kNone) return;
    const std::size_t behindEnd = text.find('\n', behindStart + 1);
    if (behindEnd == kNone) return;
    const CString start(text.substr(0, behindStart));
    const CString end(text.substr(behindStart + 1, behindEnd - behindStart - 1));
    CString page(text.substr(behindEnd + 1));
    Tools::HtmlPageRemoveSections(page, start, end);
    const std::string upper = Upper(page.View());
    const std::size_t left = upper.find(Upper(start.View()));
    Check(left == kNone || end.IsEmpty() || upper.find(Upper(end.View()), left) == kNone);
}

void CheckTagContent(const std::string& text) {
    char* position = nullptr;
    const char* from = text.c_str();
    CString content;
    while (Tools::GetInfoBetweenHtmlTags(from, "b", content, 1, 0, &position)) {
        Check(position > from && position <= text.c_str() + text.size());
        Check(std::string_view(from, static_cast<std::size_t>(position - from)).ends_with("</b>"));
        from = position;
    }
    Check(position == from);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text(data, data + size);
    CheckTags(text);
    CheckDecoding(text);
    CheckPureText(text, 0);
    CheckPureText(text, 1);
    CheckSections(text);
    CheckTagContent(text);
    return 0;
}
