#include <platform/Time.h>

#include <chrono>
#include <condition_variable>
#include <future>
#include <mutex>

#include <gmock/gmock.h>
#include <platform/Clock.h>

#include "support/ManualClock.h"

namespace {

using testing::ElementsAre;

TEST(Time, FormatsInUtcWhateverTheYear) {
    EXPECT_EQ(CTime(0).FormatGmt("%Y-%m-%d %H:%M:%S"), "1970-01-01 00:00:00");
    EXPECT_EQ(CTime(951'782'400).FormatGmt("%d.%m.%Y %a"), "29.02.2000 Tue");
    EXPECT_EQ(CTime(std::numeric_limits<std::int64_t>::max()).FormatGmt("%Y"), "");
}

TEST(ManualClock, MovesOnlyByWhatIsAskedFor) {
    test_support::ManualClock clock(1000);
    const platform::ScopedService<platform::Clock> installed(clock);
    const CTime begin = CTime::GetCurrentTime();
    Sleep(1500);
    clock.Advance(600);
    Sleep(0);
    EXPECT_EQ(CTime::GetCurrentTime() - begin, CTimeSpan(2));
    EXPECT_EQ(GetTickCount(), 2100U);
    EXPECT_THAT(clock.Sleeps(), ElementsAre(1500U, 0U));
}

TEST(ManualClock, LetsAnotherThreadBringAboutWhatIsAwaited) {
    test_support::ManualClock clock;
    std::mutex lock;
    std::condition_variable changed;
    bool isDone = false;
    const auto other = std::async(std::launch::async, [&] {
        const std::lock_guard guard(lock);
        isDone = true;
    });
    std::unique_lock held(lock);
    while (!clock.WaitFor(held, changed, 10, [&] { return isDone; })) {
    }
    const DWORD ticks = clock.TickCount();
    EXPECT_TRUE(clock.WaitFor(held, changed, 10, [&] { return isDone; }));
    EXPECT_EQ(clock.TickCount(), ticks);
}

} // namespace
