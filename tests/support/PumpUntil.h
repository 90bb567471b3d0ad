// Serving the calling thread's messages until something has happened.
#pragma once

#include <chrono>
#include <functional>

namespace test_support {

// Handles every message that waits.
void PumpMessages();

// Handles messages until `isDone` holds; fails the test, naming `pszWhat`, when it does not within
// a time that no working test needs. Returns whether it held.
bool PumpUntil(const std::function<bool()>& isDone, const char* pszWhat);

// Handles messages for this long: for what must not happen.
void PumpFor(std::chrono::milliseconds duration);

} // namespace test_support
