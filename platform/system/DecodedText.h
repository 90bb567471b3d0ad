// A text as it reads when its percent-encoding is looked through.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace platform {

// Each letter knows where it stands in the text and how often it was encoded: 0 for "@", 1 for
// "%40", 2 for "%2540".
class DecodedText {
public:
    explicit DecodedText(std::string_view text);

    std::string_view Letters() const { return m_letters; }
    std::size_t Size() const { return m_letters.size(); }
    char operator[](std::size_t index) const { return m_letters[index]; }
    unsigned Depth(std::size_t index) const { return m_depths[index]; }
    // Also of the end, for the index Size().
    std::size_t PlaceInText(std::size_t index) const { return m_places[index]; }

private:
    std::string m_letters;
    std::vector<std::uint8_t> m_depths;
    std::vector<std::size_t> m_places;
};

} // namespace platform
