// A host name whose look-up does not come to an end until the test says so.
#pragma once

namespace platform_test {

constexpr const char* kSlowName = "slow-name.invalid";

// For the life of an object; its end waits until the look-ups are over.
class SlowNames {
public:
    SlowNames();
    ~SlowNames();
    SlowNames(const SlowNames&) = delete;
    SlowNames& operator=(const SlowNames&) = delete;
    // Whether somebody waits for such a look-up.
    static bool IsAsked();
};

} // namespace platform_test
