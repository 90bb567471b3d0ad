// What all downloads of a process share.
#pragma once

#include <atomic>
#include <memory>
#include <mutex>

#include <platform/Thread.h>

// Process-wide. Any thread.
class DownloadState {
public:
    static DownloadState& Get();

    // Withdraws the stop request and forgets the last worker.
    void Reset();
    void RequestStop() { m_stop = 1; }
    bool IsStopRequested() const { return m_stop != 0; }
    const std::atomic<int>& StopWord() const { return m_stop; }

    // Null when there is none.
    std::shared_ptr<platform::WorkerThread> LastWorker() const;
    void SetLastWorker(std::shared_ptr<platform::WorkerThread> worker);
    // Unless another one has become the last.
    void ForgetLastWorker(const std::shared_ptr<platform::WorkerThread>& worker);

private:
    std::atomic<int> m_stop{0};
    mutable std::mutex m_lock;
    std::shared_ptr<platform::WorkerThread> m_lastWorker;
};
