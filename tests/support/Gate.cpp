#include "support/Gate.h"

#include <chrono>

namespace test_support {

void Gate::Open() {
    const std::lock_guard lock(m_mutex);
    m_isOpen = true;
    m_changed.notify_all();
}

bool Gate::Wait() {
    constexpr std::chrono::seconds patience{30};
    std::unique_lock lock(m_mutex);
    return m_changed.wait_for(lock, patience, [this] { return m_isOpen; });
}

} // namespace test_support
