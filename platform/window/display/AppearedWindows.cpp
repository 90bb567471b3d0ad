#include "window/display/AppearedWindows.h"

namespace platform {

void AppearedWindows::NoteWatched() {
    const std::lock_guard lock(m_mutex);
    m_isWatched = true;
    m_changed.notify_all();
}

void AppearedWindows::WaitUntilWatched() {
    constexpr std::chrono::seconds patience{1};
    std::unique_lock lock(m_mutex);
    m_changed.wait_for(lock, patience, [this] { return m_isWatched || m_isClosed; });
}

void AppearedWindows::Add(std::shared_ptr<DisplayWindow> window) {
    const std::lock_guard lock(m_mutex);
    m_windows.push_back(std::move(window));
    m_changed.notify_all();
}

std::shared_ptr<DisplayWindow> AppearedWindows::Take(Time end) {
    std::unique_lock lock(m_mutex);
    m_changed.wait_until(lock, end, [this] { return m_isClosed || !m_windows.empty(); });
    if (m_isClosed || m_windows.empty()) return nullptr;
    auto window = std::move(m_windows.front());
    m_windows.pop_front();
    return window;
}

void AppearedWindows::Close() {
    const std::lock_guard lock(m_mutex);
    m_isClosed = true;
    m_changed.notify_all();
}

bool AppearedWindows::IsClosed() {
    const std::lock_guard lock(m_mutex);
    return m_isClosed;
}

} // namespace platform
