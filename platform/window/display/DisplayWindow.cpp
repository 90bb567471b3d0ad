#include "window/display/DisplayWindow.h"

#include <chrono>

#include "window/display/DisplayWindows.h"

namespace platform {
namespace {

constexpr std::chrono::seconds kPatience{1};

} // namespace

void DisplayWindow::PostShow(bool isVisible) {
    m_display->Post([self = shared_from_this(), isVisible](DisplayWindows& windows) {
        windows.Show(self->Id(), isVisible);
    });
}

void DisplayWindow::WaitUntilShown(std::unique_lock<std::mutex>& lock, bool isVisible) {
    m_changed.wait_for(lock, kPatience, [&] {
        if (m_isGone) return true;
        return isVisible ? m_condition.isVisible && m_condition.isViewable
                         : m_condition.isWithdrawn;
    });
}

void DisplayWindow::Show(bool isVisible) {
    PostShow(isVisible);
    std::unique_lock lock(m_mutex);
    WaitUntilShown(lock, isVisible);
}

void DisplayWindow::ShowByOwner(bool isVisible) {
    std::unique_lock lock(m_mutex);
    if (m_isGone) return;
    m_isOwnerAtIt = true;
    PostShow(isVisible);
    WaitUntilShown(lock, isVisible);
    m_isOwnerAtIt = false;
    m_reported = isVisible && !m_isGone;
}

void DisplayWindow::Raise() {
    m_display->Post(
        [self = shared_from_this()](DisplayWindows& windows) { windows.Raise(self->Id()); });
}

bool DisplayWindow::IsVisible() {
    const std::lock_guard lock(m_mutex);
    return m_condition.isVisible;
}

void DisplayWindow::OnVisibleChanged(std::function<void(bool)> handler) {
    const std::lock_guard lock(m_handlerMutex);
    m_handler = std::move(handler);
}

bool DisplayWindow::WaitUntilEntered() {
    std::unique_lock lock(m_mutex);
    m_changed.wait_for(lock, kPatience, [this] { return m_isEntered || m_isGone; });
    return m_isEntered && !m_isGone;
}

void DisplayWindow::Note(const WindowCondition& condition) {
    std::unique_lock lock(m_mutex);
    m_condition = condition;
    m_changed.notify_all();
    Report(lock);
}

void DisplayWindow::NoteEntered() {
    const std::lock_guard lock(m_mutex);
    m_isEntered = true;
    m_changed.notify_all();
}

void DisplayWindow::NoteGone(bool isReported) {
    std::unique_lock lock(m_mutex);
    m_condition = {};
    m_isGone = true;
    m_changed.notify_all();
    if (isReported) Report(lock);
}

void DisplayWindow::Report(std::unique_lock<std::mutex>& lock) {
    const bool isVisible = m_condition.isVisible;
    if (isVisible == m_reported || (m_isOwnerAtIt && !m_isGone)) return;
    m_reported = isVisible;
    lock.unlock();
    const std::lock_guard handlerLock(m_handlerMutex);
    if (m_handler) m_handler(isVisible);
}

} // namespace platform
