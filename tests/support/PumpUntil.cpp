#include "support/PumpUntil.h"

#include <gtest/gtest.h>

#include <platform/Messages.h>

namespace test_support {
namespace {

using Clock = std::chrono::steady_clock;

bool PumpUntilTime(const std::function<bool()>& isDone, Clock::time_point end) {
    constexpr DWORD lookEveryMilliseconds = 10; // conditions may depend on other threads
    for (;;) {
        PumpMessages();
        if (isDone()) return true;
        if (Clock::now() >= end) return false;
        MsgWaitForMultipleObjects(0, nullptr, FALSE, lookEveryMilliseconds, QS_ALLINPUT);
    }
}

} // namespace

void PumpMessages() {
    MSG message;
    while (PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE)) {
        TranslateMessage(&message);
        DispatchMessageA(&message);
    }
}

bool PumpUntil(const std::function<bool()>& isDone, const char* pszWhat) {
    constexpr std::chrono::seconds patience{60};
    const bool isInTime = PumpUntilTime(isDone, Clock::now() + patience);
    EXPECT_TRUE(isInTime) << "did not happen in time: " << pszWhat;
    return isInTime;
}

void PumpFor(std::chrono::milliseconds duration) {
    PumpUntilTime([] { return false; }, Clock::now() + duration);
}

} // namespace test_support
