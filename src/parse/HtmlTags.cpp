#include "parse/HtmlTags.h"

#include <algorithm>
#include <string_view>

#include <ZrHbHtmlTools.h>

#include "parse/InPlaceWriter.h"

namespace {

constexpr std::string_view kLineBreak = "<br>";

bool IsHeadingEnd(std::string_view text) {
    constexpr std::size_t kLength = std::string_view("</h1>").size();
    return text.size() >= kLength && text[1] == '/' && (text[2] == 'h' || text[2] == 'H') &&
           text[3] >= '1' && text[3] <= '3' && text[4] == '>';
}

class TagRemover {
public:
    TagRemover(char* text, std::size_t length, TagBreaks breaks)
        : m_page(text, length), m_asLines(breaks == TagBreaks::kAsLines), m_kept(text) {}

    std::size_t Remove() {
        for (;;) {
            const std::size_t tag = std::min(m_page.find('<', m_position), m_page.size());
            m_kept.Copy(m_position, tag);
            m_position = tag;
            if (tag == m_page.size()) return m_kept.Length();
            if (TakeLineBreak())
                m_kept.Put('\n');
            else
                TakeTag();
        }
    }

private:
    bool TakeLineBreak() {
        if (!m_asLines || !m_page.substr(m_position).starts_with(kLineBreak)) return false;
        m_position += kLineBreak.size();
        return true;
    }

    void TakeTag() {
        bool isHeadingEnd = false;
        while (m_position < m_page.size()) {
            const char ch = m_page[m_position];
            if (ch == '<') {
                if (TakeLineBreak()) continue;
                isHeadingEnd = m_asLines && IsHeadingEnd(m_page.substr(m_position));
                m_kept.Put(' ');
            }
            ++m_position;
            if (ch == '>') break;
        }
        if (isHeadingEnd) m_kept.Put('\n');
    }

    std::string_view m_page;
    bool m_asLines;
    InPlaceWriter m_kept;
    std::size_t m_position = 0;
};

} // namespace

std::size_t RemoveTags(char* text, std::size_t length, TagBreaks breaks) {
    return TagRemover(text, length, breaks).Remove();
}

void CZrHbHtmlTools::HtmlPageRemoveTags(CString& page) {
    RewriteInPlace(page, [](char* text, std::size_t length) {
        return RemoveTags(text, length, TagBreaks::kNone);
    });
}
