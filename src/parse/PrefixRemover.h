// Removing the beginning of a text wherever the text occurs.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "parse/FoldedPattern.h"

// Finds the first occurrence of a pattern in a page, removes its first characters, and again from
// the beginning of the page, until there is none. The rest of an occurrence is not read again: what
// the search knows behind it follows from what it knew in front of it, and a table has that.
class PrefixRemover {
public:
    // prefix: how many characters of the pattern are removed; at least 1, and not all.
    PrefixRemover(const FoldedPattern& pattern, std::size_t prefix);

    // Changes the text in place and returns its new length.
    std::size_t Remove(char* text, std::size_t length) const;

private:
    class Page;

    void MarkGoingOn();

    const FoldedPattern& m_pattern;
    const std::size_t m_size;   // of the pattern
    const std::size_t m_prefix; // what is removed
    const std::size_t m_rest;   // what stays
    // For each state in front of the rest: the longest part of the pattern, matched there, that the
    // rest goes on with, to its own end or to the pattern's; 0 when there is none.
    std::vector<std::uint32_t> m_goesOn;
    std::size_t m_stateBehindRest = 0; // when nothing in front of it goes on
};
