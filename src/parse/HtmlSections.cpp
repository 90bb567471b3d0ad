// Removing sections of a page from a start text through an end text.

#include <ZrHbHtmlTools.h>

#include "parse/FoldedPattern.h"
#include "parse/InPlaceWriter.h"
#include "parse/PrefixRemover.h"

namespace {

constexpr std::size_t kNotFound = std::string_view::npos;

// Removes every section in one pass. The text in front of a removed section stays ready to become
// the first part of the next start text, and the end text may begin inside the start text. When it
// ends inside, all sections are the same: the beginning of the start text.
class SectionRemover {
public:
    SectionRemover(std::string_view start, std::string_view end) : m_start(start), m_end(end) {
        m_endInsideStart = m_end.FindEnd(m_start.Text(), 0, m_endStateBehindStart);
    }

    std::size_t Remove(char* text, std::size_t length) const {
        if (m_endInsideStart < m_start.Text().size())
            return PrefixRemover(m_start, m_endInsideStart).Remove(text, length);
        const std::string_view page(text, length);
        InPlaceWriter kept(text);
        std::size_t position = 0;
        std::size_t matched = 0;
        for (;;) {
            const std::size_t behindStart = m_start.FindEnd(page, position, matched);
            if (behindStart == kNotFound) break;
            kept.Copy(position, behindStart);
            const std::size_t sectionStart = kept.Length() - m_start.Text().size();
            position = BehindSection(page, behindStart);
            if (position == kNotFound) {
                position = behindStart;
                break;
            }
            kept.CutTo(sectionStart);
            matched = m_start.StateBehind(kept.View());
        }
        kept.Copy(position, length);
        return kept.Length();
    }

private:
    std::size_t BehindSection(std::string_view page, std::size_t behindStart) const {
        if (m_endInsideStart != kNotFound) return behindStart; // at its end
        std::size_t matched = m_endStateBehindStart;
        return m_end.FindEnd(page, behindStart, matched);
    }

    FoldedPattern m_start;
    FoldedPattern m_end;
    // The position behind the end text inside the start text; otherwise how much of it has matched
    // at the end of the start text.
    std::size_t m_endInsideStart;
    std::size_t m_endStateBehindStart = 0;
};

} // namespace

void CZrHbHtmlTools::HtmlPageRemoveSections(CString& page, const CString& strStart,
                                            const CString& strEnd) {
    if (strEnd.IsEmpty()) return;
    const SectionRemover remover(strStart.View(), strEnd.View());
    RewriteInPlace(page,
                   [&](char* text, std::size_t length) { return remover.Remove(text, length); });
}
