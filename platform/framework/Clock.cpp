#include <platform/Clock.h>

#include <chrono>
#include <memory>
#include <thread>

namespace platform {
namespace {

class SystemClock : public Clock {
public:
    std::time_t Now() override {
        return std::chrono::system_clock::to_time_t(std::chrono::system_clock::now());
    }

    DWORD TickCount() override {
        const auto sinceStart = std::chrono::steady_clock::now().time_since_epoch();
        return static_cast<DWORD>(
            std::chrono::duration_cast<std::chrono::milliseconds>(sinceStart).count());
    }

    void Sleep(DWORD dwMilliseconds) override {
        std::this_thread::sleep_for(std::chrono::milliseconds(dwMilliseconds));
    }

    bool WaitFor(std::unique_lock<std::mutex>& lock, std::condition_variable& changed,
                 DWORD dwMilliseconds, const std::function<bool()>& done) override {
        return changed.wait_for(lock, std::chrono::milliseconds(dwMilliseconds), done);
    }
};

} // namespace

Clock& Clock::Real() {
    static SystemClock& clock = *std::make_unique<SystemClock>().release();
    return clock;
}

} // namespace platform

DWORD GetTickCount() {
    return platform::Current<platform::Clock>().TickCount();
}

void Sleep(DWORD dwMilliseconds) {
    platform::Current<platform::Clock>().Sleep(dwMilliseconds);
}
