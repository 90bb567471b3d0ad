// Boundaries of multipart bodies, made from pseudo-random numbers.
#pragma once

#include <string>

#include <platform/Services.h>

// The service that makes them, one for the process; any thread. A test installs its own with
// platform::ScopedService.
class BoundarySource {
public:
    virtual ~BoundarySource() = default;
    static BoundarySource& Real();

    // 21 letters and digits. Blocks for 1000 ms, after which the clock of seconds that the numbers
    // start from has moved on.
    // nAttempt: how many boundaries before this one the caller found in its data. From the first
    // on nothing outside the process can tell what comes next, so that no data holds them all.
    virtual std::string Draw(unsigned nAttempt) = 0;
};
