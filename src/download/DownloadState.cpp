#include "download/DownloadState.h"

#include <utility>

DownloadState& DownloadState::Get() {
    static DownloadState state;
    return state;
}

void DownloadState::Reset() {
    m_stop = 0;
    SetLastWorker(nullptr);
}

std::shared_ptr<platform::WorkerThread> DownloadState::LastWorker() const {
    const std::lock_guard lock(m_lock);
    return m_lastWorker;
}

void DownloadState::SetLastWorker(std::shared_ptr<platform::WorkerThread> worker) {
    // The one before is let go outside the lock: that may wait for its end.
    const std::lock_guard lock(m_lock);
    m_lastWorker.swap(worker);
}

void DownloadState::ForgetLastWorker(const std::shared_ptr<platform::WorkerThread>& worker) {
    const std::lock_guard lock(m_lock);
    if (m_lastWorker == worker) m_lastWorker = nullptr; // the caller's reference keeps it
}
