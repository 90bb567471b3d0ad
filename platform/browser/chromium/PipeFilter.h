// Somebody who sees each message of the browser ahead of its owner.
#pragma once

#include <chrono>

#include "browser/chromium/DevToolsValues.h"

namespace platform {

// On the thread that reads the pipe: it answers the browser at once, whatever the owner does.
class PipeFilter {
public:
    using Time = std::chrono::steady_clock::time_point;

    virtual ~PipeFilter() = default;
    // True: the message is dealt with, the owner does not get it.
    virtual bool Take(const Json& message) = 0;
    // When OnTime is wanted (Time::max(): not at all); later messages may change it.
    virtual Time NextTime() const = 0;
    virtual void OnTime() = 0;
};

} // namespace platform
