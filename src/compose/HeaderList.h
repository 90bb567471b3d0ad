// Header fields in the order in which their names were first added, found in constant time.
#pragma once

#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include <ZrHbHttpHeaders.h>

inline constexpr std::string_view kLineEnd = "\r\n";

struct HeaderField {
    std::string name;  // never empty, no two the same; no NUL byte, nor in the value
    std::string value; // never empty
};

class HeaderList {
public:
    // Name and value count up to their first NUL byte. False when one is empty, and for a name that
    // is there under a handling that is none.
    bool Add(std::string_view name, std::string_view value,
             CZrHbHttpHeaders::EZrHbAddHandling eHandling);
    // Null when there is none of exactly that name.
    const HeaderField* Find(const std::string& name) const;
    // The block: the fields named in the order first, then the others, then an empty line.
    std::string Print(const CStringArray& order) const;

private:
    std::vector<const HeaderField*> InOrder(const CStringArray& order) const;

    std::vector<HeaderField> m_fields;
    std::unordered_map<std::string, std::size_t> m_positions;
};
