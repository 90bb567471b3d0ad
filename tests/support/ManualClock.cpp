#include "support/ManualClock.h"

#include <thread>

namespace test_support {

void ManualClock::Advance(DWORD dwMilliseconds) {
    const std::lock_guard guard(m_lock);
    m_elapsed += dwMilliseconds;
}

std::vector<DWORD> ManualClock::Sleeps() const {
    const std::lock_guard guard(m_lock);
    return m_sleeps;
}

std::size_t ManualClock::SleepCount() const {
    const std::lock_guard guard(m_lock);
    return m_sleeps.size();
}

std::time_t ManualClock::Now() {
    const std::lock_guard guard(m_lock);
    return m_start + static_cast<std::time_t>(m_elapsed / 1000);
}

DWORD ManualClock::TickCount() {
    const std::lock_guard guard(m_lock);
    return static_cast<DWORD>(m_elapsed);
}

void ManualClock::Sleep(DWORD dwMilliseconds) {
    {
        const std::lock_guard guard(m_lock);
        m_elapsed += dwMilliseconds;
        m_sleeps.push_back(dwMilliseconds);
    }
    std::this_thread::yield();
}

bool ManualClock::WaitFor(std::unique_lock<std::mutex>& lock, std::condition_variable&,
                          DWORD dwMilliseconds, const std::function<bool()>& done) {
    if (done()) return true;
    lock.unlock();
    Advance(dwMilliseconds);
    std::this_thread::yield();
    lock.lock();
    return done();
}

} // namespace test_support
