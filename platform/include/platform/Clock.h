// Time and pauses. Everything that waits in the library waits through this clock, so that a test
// can install one that it moves by hand.
#pragma once

#include <condition_variable>
#include <ctime>
#include <functional>
#include <mutex>

#include "Export.h"
#include "Services.h"
#include "Types.h"

ZRHB_EXPORT_BEGIN

namespace platform {

class Clock {
public:
    virtual ~Clock() = default;
    static Clock& Real();

    // Seconds since 1970-01-01 00:00 UTC.
    virtual std::time_t Now() = 0;
    // Milliseconds of a clock that only moves forward; wraps after 49.7 days.
    virtual DWORD TickCount() = 0;
    virtual void Sleep(DWORD dwMilliseconds) = 0;
    // Waits on `changed` (with `lock` held) until `done` holds or the time is over; returns
    // done(). A clock moved by hand does not block: it moves on by the time asked for.
    virtual bool WaitFor(std::unique_lock<std::mutex>& lock, std::condition_variable& changed,
                         DWORD dwMilliseconds, const std::function<bool()>& done) = 0;
};

} // namespace platform

DWORD GetTickCount();
void Sleep(DWORD dwMilliseconds);

ZRHB_EXPORT_END
