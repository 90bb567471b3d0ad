#include "window/display/CommandQueue.h"

#include <sys/eventfd.h>

namespace platform {

CommandQueue::CommandQueue() : m_wake(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {}

void CommandQueue::Wake() {
    eventfd_write(m_wake.Get(), 1);
}

bool CommandQueue::Post(DisplayCommand command) {
    const std::lock_guard lock(m_mutex);
    if (m_isClosed) return false;
    m_waiting.push_back(std::move(command));
    Wake();
    return true;
}

void CommandQueue::Close() {
    const std::lock_guard lock(m_mutex);
    m_isClosed = true;
    Wake();
}

bool CommandQueue::Take(std::vector<DisplayCommand>& commands) {
    const std::lock_guard lock(m_mutex);
    eventfd_t count = 0;
    if (!m_isClosed) eventfd_read(m_wake.Get(), &count);
    commands.swap(m_waiting);
    return !m_isClosed || !commands.empty();
}

} // namespace platform
