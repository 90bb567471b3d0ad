// What other threads want of a display's thread.
#pragma once

#include <functional>
#include <mutex>
#include <vector>

#include "system/OwnedDescriptor.h"

namespace platform {

class DisplayWindows;

using DisplayCommand = std::function<void(DisplayWindows& windows)>;

class CommandQueue {
public:
    CommandQueue();

    // Any thread. False, with the command dropped, once the queue is closed.
    bool Post(DisplayCommand command);
    // Lets the display's thread end when it has handled what was posted before.
    void Close();

    // The display's thread: readable when commands wait or the queue is closed.
    int Descriptor() const { return m_wake.Get(); }
    // What waits; false when nothing does and the queue is closed.
    bool Take(std::vector<DisplayCommand>& commands);

private:
    void Wake();

    const OwnedDescriptor m_wake;
    std::mutex m_mutex;
    std::vector<DisplayCommand> m_waiting;
    bool m_isClosed = false;
};

} // namespace platform
