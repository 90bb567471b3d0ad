// The bytes of a body that have arrived and not been read.
#pragma once

#include <cstddef>
#include <cstring>
#include <memory>
#include <string_view>

namespace platform {

// Takes memory when the first bytes come, and never more.
class ReadAhead {
public:
    // Room for two of what is received at a time: a transfer that goes on behind a pause brings
    // what had to wait and a new piece, and what has to wait is copied once more.
    static constexpr std::size_t kCapacity = 256 * 1024;

    bool IsEmpty() const { return m_begin == m_end; }
    std::string_view View() const { return {m_bytes.get() + m_begin, m_end - m_begin}; }
    void Consume(std::size_t count) { m_begin += count; }
    void Clear() { m_begin = m_end; }

    // All of them, or none (false) when the room is too small; an empty one has room for kCapacity.
    bool Append(std::string_view bytes) {
        if (IsEmpty()) m_begin = m_end = 0;
        if (bytes.size() > kCapacity - m_end) return false;
        if (!m_bytes) m_bytes = std::make_unique_for_overwrite<char[]>(kCapacity);
        std::memcpy(m_bytes.get() + m_end, bytes.data(), bytes.size());
        m_end += bytes.size();
        return true;
    }

private:
    std::unique_ptr<char[]> m_bytes;
    std::size_t m_begin = 0;
    std::size_t m_end = 0;
};

} // namespace platform
