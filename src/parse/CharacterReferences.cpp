#include "parse/CharacterReferences.h"

#include <array>
#include <cstdint>

#include "parse/AsciiText.h"
#include "parse/EntityTable.h"
#include "parse/InPlaceWriter.h"

namespace {

// What stands for a reference that leaves nothing behind, as "&" itself does.
constexpr char kNothing = '&';

// For each byte the index of the first entity whose name does not begin with a smaller one.
constexpr auto kFirstEntities = [] {
    std::array<std::uint8_t, 257> first{};
    std::uint8_t index = 0;
    for (std::size_t byte = 0; byte < first.size(); ++byte) {
        while (index < std::size(kEntities) &&
               static_cast<unsigned char>(kEntities[index].name[0]) < byte)
            ++index;
        first[byte] = index;
    }
    return first;
}();

const Entity* FindEntity(std::string_view text) {
    if (text.empty()) return nullptr;
    const auto byte = static_cast<unsigned char>(text.front());
    for (std::size_t i = kFirstEntities[byte]; i < kFirstEntities[byte + 1u]; ++i)
        if (text.starts_with(kEntities[i].name)) return &kEntities[i];
    return nullptr;
}

// Takes a reference, whose "&" has been taken, off the beginning of a text.
class ReferenceReader {
public:
    ReferenceReader(std::string_view page, std::size_t position)
        : m_page(page), m_position(position) {}

    char Take() {
        if (IsAt('#')) return TakeNumber();
        const Entity* const entity = FindEntity(m_page.substr(m_position));
        if (!entity) return kNothing;
        m_position += entity->name.size();
        SkipSemicolon();
        return static_cast<char>(entity->value);
    }

    std::size_t Position() const { return m_position; }

private:
    bool IsAt(char ch) const { return m_position < m_page.size() && m_page[m_position] == ch; }
    void SkipSemicolon() {
        if (IsAt(';')) ++m_position;
    }

    char TakeNumber() {
        unsigned value = 0;
        while (++m_position < m_page.size() && IsAsciiDigit(m_page[m_position]))
            value = (value * 10 + static_cast<unsigned>(m_page[m_position] - '0')) % 256;
        SkipSemicolon();
        return value == 0 ? kNothing : static_cast<char>(value);
    }

    std::string_view m_page;
    std::size_t m_position;
};

} // namespace

std::size_t DecodeReferences(char* text, std::size_t length) {
    const std::string_view page(text, length);
    InPlaceWriter decoded(text);
    std::size_t position = 0;
    for (;;) {
        const std::size_t ampersand = std::min(page.find('&', position), length);
        decoded.Copy(position, ampersand);
        if (ampersand == length) return decoded.Length();
        ReferenceReader reference(page, ampersand + 1);
        const char byte = reference.Take();
        if (byte != kNothing) decoded.Put(byte);
        position = reference.Position();
    }
}
