// A page's readable text.

#include <ZrHbHtmlTools.h>

#include <algorithm>
#include <array>

#include "parse/AsciiText.h"
#include "parse/CharacterReferences.h"
#include "parse/HtmlTags.h"
#include "parse/InPlaceWriter.h"

namespace {

constexpr std::size_t kMostLineFeeds = 2;
constexpr std::size_t kMostLineFeedsCompact = 1;

constexpr char kFiller = 1; // dropped wherever it stands

// What a byte means where white space is joined.
enum class Role : unsigned char {
    kText,
    kBlank,
    kLineFeed,
    kReturn,
    kEdge, // dropped at both ends of the text, otherwise text
    kIgnored
};

constexpr auto kRoles = [] {
    std::array<Role, 256> roles{};
    roles[' '] = roles['\t'] = Role::kBlank;
    roles['\n'] = Role::kLineFeed;
    roles['\r'] = Role::kReturn;
    roles['\v'] = roles['\f'] = Role::kEdge;
    roles[kFiller] = Role::kIgnored;
    return roles;
}();

Role RoleOf(char ch) {
    return kRoles[static_cast<unsigned char>(ch)];
}

// Joins blanks and line feeds: blanks among line feeds vanish, other blanks become one. Nothing is
// left at both ends.
class WhiteSpaceJoiner {
public:
    WhiteSpaceJoiner(char* text, std::size_t length, std::size_t mostLineFeeds)
        : m_page(text, length), m_mostLineFeeds(mostLineFeeds), m_joined(text) {}

    std::size_t Join() {
        for (std::size_t position = 0; position < m_page.size();)
            position = TakeGap(position) ? position + 1 : TakeWords(position);
        const std::size_t last = m_joined.View().find_last_not_of(kWhiteSpace);
        return last == std::string_view::npos ? 0 : last + 1;
    }

private:
    // Takes the character into the gap between words; false when it belongs to a word.
    bool TakeGap(std::size_t position) {
        switch (RoleOf(m_page[position])) {
        case Role::kText:
            return false;
        case Role::kLineFeed:
            ++m_lineFeeds;
            [[fallthrough]];
        case Role::kBlank:
            m_gap = true;
            return true;
        case Role::kReturn:
            return m_joined.Length() == 0 || LineFeedFollows(position);
        case Role::kEdge:
            return m_joined.Length() == 0;
        case Role::kIgnored:
            break;
        }
        return true;
    }

    bool LineFeedFollows(std::size_t position) const {
        const std::size_t next = m_page.find_first_not_of(kFiller, position + 1);
        return next != std::string_view::npos && m_page[next] == '\n';
    }

    // Writes the gap and the words at `position`; returns the position behind them.
    std::size_t TakeWords(std::size_t position) {
        if (m_gap) PutGap();
        std::size_t end = position + 1;
        while (IsText(end) || (end < m_page.size() && m_page[end] == ' ' && IsText(end + 1)))
            ++end;
        m_joined.Copy(position, end);
        return end;
    }

    bool IsText(std::size_t position) const {
        return position < m_page.size() && RoleOf(m_page[position]) == Role::kText;
    }

    void PutGap() {
        if (m_joined.Length() > 0) {
            for (std::size_t i = std::min(m_lineFeeds, m_mostLineFeeds); i > 0; --i)
                m_joined.Put('\n');
            if (m_lineFeeds == 0) m_joined.Put(' ');
        }
        m_gap = false;
        m_lineFeeds = 0;
    }

    std::string_view m_page;
    std::size_t m_mostLineFeeds;
    InPlaceWriter m_joined;
    bool m_gap = false;
    std::size_t m_lineFeeds = 0;
};

std::size_t RewriteAsLines(char* text, std::size_t length, std::size_t mostLineFeeds) {
    length = RemoveTags(text, length, TagBreaks::kAsLines);
    length = DecodeReferences(text, length);
    return WhiteSpaceJoiner(text, length, mostLineFeeds).Join();
}

} // namespace

void CZrHbHtmlTools::HtmlPageMakePureText(CString& page, int nCompact) {
    HtmlPageRemoveSections(page, "<head", "</head>");
    HtmlPageRemoveSections(page, "<style", "</style>");
    HtmlPageRemoveSections(page, "<script", "</script>");
    const std::size_t mostLineFeeds = nCompact ? kMostLineFeedsCompact : kMostLineFeeds;
    RewriteInPlace(page, [&](char* text, std::size_t length) {
        return RewriteAsLines(text, length, mostLineFeeds);
    });
    page += '\n';
}
