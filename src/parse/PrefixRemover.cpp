#include "parse/PrefixRemover.h"

#include <algorithm>
#include <cstring>

#include "parse/AsciiText.h"
#include "parse/InPlaceWriter.h"

// The page: what is kept of it, with the state of the search behind each character, and what is not
// decided yet. In between there is room.
class PrefixRemover::Page {
public:
    Page(const FoldedPattern& pattern, char* text)
        : m_pattern(pattern), m_text(text), m_kept(text) {}

    std::size_t Undecided() const { return m_undecided; }
    std::size_t State() const { return m_states.back(); }

    void KeepUpTo(std::size_t position) {
        for (; m_undecided < position; ++m_undecided) {
            const char ch = m_text[m_undecided];
            m_states.push_back(
                static_cast<std::uint32_t>(m_pattern.Advance(State(), AsciiUpper(ch))));
            m_kept.Put(ch);
        }
    }
    // Removes `count` characters that begin `inKept` before the undecided ones.
    void Remove(std::size_t count, std::size_t inKept) {
        m_kept.CutTo(m_kept.Length() - inKept);
        m_states.resize(m_kept.Length() + 1);
        const char* const behind = m_text + m_kept.Length() + count;
        m_undecided = m_undecided + count - inKept;
        if (inKept > count) std::memmove(m_text + m_undecided, behind, inKept - count);
    }
    std::size_t KeepRest(std::size_t length) {
        m_kept.Copy(m_undecided, length);
        return m_kept.Length();
    }

private:
    const FoldedPattern& m_pattern;
    char* const m_text;
    InPlaceWriter m_kept;
    std::vector<std::uint32_t> m_states{0};
    std::size_t m_undecided = 0;
};

PrefixRemover::PrefixRemover(const FoldedPattern& pattern, std::size_t prefix)
    : m_pattern(pattern), m_size(pattern.Text().size()), m_prefix(prefix), m_rest(m_size - prefix),
      m_goesOn(m_size, 0) {
    MarkGoingOn();
    for (std::size_t state = 1; state < m_size; ++state)
        if (m_goesOn[state] == 0) m_goesOn[state] = m_goesOn[pattern.Fallback(state)];
    m_stateBehindRest = pattern.Fallback(m_size);
    while (m_stateBehindRest > m_rest)
        m_stateBehindRest = pattern.Fallback(m_stateBehindRest);
}

// Where in the pattern the rest stands, or stands cut off by the pattern's end.
void PrefixRemover::MarkGoingOn() {
    const auto mark = [&](std::size_t position) {
        m_goesOn[position] = static_cast<std::uint32_t>(position);
    };
    const FoldedPattern rest(m_pattern.Text().substr(m_prefix));
    std::size_t matched = 0;
    for (std::size_t end = 1; end <= m_size; ++end) {
        matched = rest.Advance(matched, m_pattern.Text()[end - 1]);
        if (matched < m_rest) continue;
        mark(end - m_rest);
        matched = rest.Fallback(matched);
    }
    for (; matched > 0; matched = rest.Fallback(matched))
        mark(m_size - matched);
}

std::size_t PrefixRemover::Remove(char* text, std::size_t length) const {
    Page page(m_pattern, text);
    std::size_t read = 0; // what the search knows
    std::size_t state = 0;
    while ((read = m_pattern.FindEnd({text, length}, read, state)) != std::string_view::npos) {
        if (read > m_size) page.KeepUpTo(read - m_size);
        page.Remove(m_prefix, m_size - (read - page.Undecided()));
        const std::size_t begun = m_goesOn[page.State()];
        state = begun > 0 ? std::min(begun + m_rest, m_size) : m_stateBehindRest;
        read = page.Undecided() + (begun > 0 ? state - begun : m_rest);
    }
    return page.KeepRest(length);
}
