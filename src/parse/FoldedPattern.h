// Search without regard to the case of ASCII letters.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

// A text to search for, linear in the searched text whatever both are (Knuth, Morris, Pratt). The
// state of a search is a number: how many characters of the pattern have matched so far.
class FoldedPattern {
public:
    explicit FoldedPattern(std::string_view pattern);

    std::string_view Text() const { return m_pattern; }

    // Goes on with a search at `position`, where the last `matched` characters before it have
    // matched. Returns the position behind the first match, or npos with the state at the end of
    // the text. An empty pattern matches where the search begins.
    std::size_t FindEnd(std::string_view text, std::size_t position, std::size_t& matched) const;
    // The state of a search that has come to the end of a text without match.
    std::size_t StateBehind(std::string_view text) const;

    // The state behind one more character, in upper case. matched: less than the whole pattern.
    std::size_t Advance(std::size_t matched, char folded) const;
    // The next shorter part of the pattern that has matched as well. matched: more than 0.
    std::size_t Fallback(std::size_t matched) const { return m_fallbacks[matched - 1]; }

private:
    std::size_t FindFirstCharacter(std::string_view text, std::size_t position) const;

    std::string m_pattern;
    // For each count of matched characters less one: how many remain matched when the next differs.
    std::vector<std::size_t> m_fallbacks;
};
