#include "parse/FoldedPattern.h"

#include <algorithm>

#include "parse/AsciiText.h"

FoldedPattern::FoldedPattern(std::string_view pattern)
    : m_pattern(pattern), m_fallbacks(pattern.size(), 0) {
    std::transform(m_pattern.begin(), m_pattern.end(), m_pattern.begin(), AsciiUpper);
    for (std::size_t count = 1; count < m_pattern.size(); ++count)
        m_fallbacks[count] = Advance(m_fallbacks[count - 1], m_pattern[count]);
}

std::size_t FoldedPattern::Advance(std::size_t matched, char folded) const {
    while (matched > 0 && m_pattern[matched] != folded)
        matched = m_fallbacks[matched - 1];
    return m_pattern[matched] == folded ? matched + 1 : 0;
}

std::size_t FoldedPattern::FindFirstCharacter(std::string_view text, std::size_t position) const {
    const char first = m_pattern.front();
    if (!IsAsciiUpper(first)) return std::min(text.find(first, position), text.size());
    while (position < text.size() && AsciiUpper(text[position]) != first)
        ++position;
    return position;
}

std::size_t FoldedPattern::FindEnd(std::string_view text, std::size_t position,
                                   std::size_t& matched) const {
    while (matched < m_pattern.size()) {
        if (matched == 0) position = FindFirstCharacter(text, position);
        if (position >= text.size()) return std::string_view::npos;
        matched = Advance(matched, AsciiUpper(text[position++]));
    }
    return position;
}

std::size_t FoldedPattern::StateBehind(std::string_view text) const {
    // Less than a whole pattern is all that can be matched, so nothing before it counts.
    const std::size_t longest = m_pattern.empty() ? 0 : m_pattern.size() - 1;
    const std::size_t first = text.size() - std::min(text.size(), longest);
    std::size_t matched = 0;
    FindEnd(text, first, matched);
    return matched;
}
