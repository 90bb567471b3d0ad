#include "system/DecodedText.h"

#include <charconv>

namespace platform {

namespace {

constexpr unsigned kDeepest = 255;

// Two hexadecimal digits.
bool TakeByte(std::string_view digits, char& byte) {
    unsigned char value = 0;
    if (digits.size() != 2) return false;
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + 2, value, 16);
    if (error != std::errc() || end != digits.data() + 2) return false;
    byte = static_cast<char>(value);
    return true;
}

} // namespace

DecodedText::DecodedText(std::string_view text) {
    m_letters.reserve(text.size());
    m_depths.reserve(text.size());
    m_places.reserve(text.size() + 1);
    for (std::size_t place = 0; place < text.size();) {
        m_places.push_back(place);
        char letter = text[place++];
        unsigned depth = 0;
        for (; letter == '%' && TakeByte(text.substr(place, 2), letter); place += 2)
            depth += depth < kDeepest;
        m_letters += letter;
        m_depths.push_back(static_cast<std::uint8_t>(depth));
    }
    m_places.push_back(text.size());
}

} // namespace platform
