// A clock that only tests move. Sleeps and waits move it on by the time asked for and return at
// once. Any thread.
#pragma once

#include <mutex>
#include <vector>

#include <platform/Clock.h>

namespace test_support {

class ManualClock : public platform::Clock {
public:
    // startSeconds: what Now() gives at first, in seconds since 1970. The tick count starts at 0.
    explicit ManualClock(std::time_t startSeconds = 1'700'000'000) : m_start(startSeconds) {}

    void Advance(DWORD dwMilliseconds);
    // The pauses asked for with Sleep, in milliseconds, oldest first.
    std::vector<DWORD> Sleeps() const;
    std::size_t SleepCount() const;

    std::time_t Now() override;
    DWORD TickCount() override;
    void Sleep(DWORD dwMilliseconds) override;
    // Releases the lock for a moment, so that another thread can bring about what is awaited.
    bool WaitFor(std::unique_lock<std::mutex>& lock, std::condition_variable& changed,
                 DWORD dwMilliseconds, const std::function<bool()>& done) override;

private:
    mutable std::mutex m_lock;
    const std::time_t m_start;
    std::uint64_t m_elapsed = 0;
    std::vector<DWORD> m_sleeps;
};

} // namespace test_support
