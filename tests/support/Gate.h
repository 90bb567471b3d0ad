// Where a test server's reply waits until the test lets it go on.
#pragma once

#include <condition_variable>
#include <mutex>

namespace test_support {

// Closed at first. Any thread.
class Gate {
public:
    void Open();
    // False when nobody opened it for very long; the reply then goes on, so that no test hangs.
    bool Wait();

private:
    std::mutex m_mutex;
    std::condition_variable m_changed;
    bool m_isOpen = false;
};

} // namespace test_support
