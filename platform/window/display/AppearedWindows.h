// The windows of one application that have appeared and wait to be taken.
#pragma once

#include <chrono>
#include <condition_variable>
#include <deque>
#include <memory>
#include <mutex>
#include <string>

namespace platform {

class DisplayWindow;

// Any thread.
class AppearedWindows {
public:
    using Time = std::chrono::steady_clock::time_point;

    explicit AppearedWindows(std::string instance) : m_instance(std::move(instance)) {}

    const std::string& Instance() const { return m_instance; }
    // From now on no window of the application is missed.
    void NoteWatched();
    // Waits for NoteWatched, but not for a display that does not answer.
    void WaitUntilWatched();
    void Add(std::shared_ptr<DisplayWindow> window);
    // Waits for one; null when none came in time, or none will come.
    std::shared_ptr<DisplayWindow> Take(Time end);
    // Nobody waits for windows any more.
    void Close();
    bool IsClosed();

private:
    const std::string m_instance; // end of the first part of the windows' WM_CLASS
    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::deque<std::shared_ptr<DisplayWindow>> m_windows;
    bool m_isWatched = false;
    bool m_isClosed = false;
};

} // namespace platform
