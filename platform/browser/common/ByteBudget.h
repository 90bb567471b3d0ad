// What several bodies may hold together.
#pragma once

#include <atomic>
#include <cstddef>

namespace platform {

// Any thread.
class ByteBudget {
public:
    explicit ByteBudget(std::size_t bytes) : m_left(bytes) {}

    // False, with nothing taken, when there is not as much left.
    bool Take(std::size_t bytes) {
        std::size_t left = m_left;
        while (left >= bytes)
            if (m_left.compare_exchange_weak(left, left - bytes)) return true;
        return false;
    }
    void GiveBack(std::size_t bytes) { m_left += bytes; }

private:
    std::atomic<std::size_t> m_left;
};

} // namespace platform
