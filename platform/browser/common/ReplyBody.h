// The bytes of a page as they arrive.
#pragma once

#include <cstddef>
#include <mutex>
#include <string>
#include <string_view>

namespace platform {

// Written by one thread (the network's), read by any.
class ReplyBody {
public:
    void Append(std::string_view bytes);
    void Replace(std::string bytes);
    std::size_t Size() const;
    // Copies bytes from `offset` on, as many as there are and fit; returns how many.
    std::size_t Copy(std::size_t offset, char* target, std::size_t count) const;
    // Everything so far, without copying; for the writing thread, until its next Append.
    std::string_view ViewByWriter() const { return m_bytes; }

private:
    mutable std::mutex m_mutex;
    std::string m_bytes;
};

} // namespace platform
