#include <platform/Thread.h>

#include <algorithm>
#include <atomic>
#include <mutex>
#include <system_error>
#include <thread>
#include <utility>
#include <vector>

#include <platform/LastError.h>

#include "window/MessageQueue.h"

namespace platform {
namespace {

class RealWorker final : public WorkerThread {
public:
    ~RealWorker() override {
        if (m_thread.joinable()) m_thread.join();
    }

    // Throws std::system_error.
    void Begin(std::function<void()> procedure) {
        m_thread = std::thread([this, procedure = std::move(procedure)] {
            MessageQueue::OfThisThread();
            procedure();
            End();
        });
    }

    DWORD Wait(DWORD dwMilliseconds) override {
        const auto queue = MessageQueue::OfThisThread();
        AddWaiting(queue);
        const bool isOver = queue->WaitUntil([this] { return IsOver(); }, dwMilliseconds);
        RemoveWaiting(queue);
        return isOver ? WAIT_OBJECT_0 : WAIT_TIMEOUT;
    }

    bool IsOver() const { return m_isOver; }

private:
    void AddWaiting(const std::shared_ptr<MessageQueue>& queue) {
        const std::lock_guard lock(m_lock);
        m_waiting.push_back(queue);
    }
    // Once: a message handled during a wait may wait as well.
    void RemoveWaiting(const std::shared_ptr<MessageQueue>& queue) {
        const std::lock_guard lock(m_lock);
        m_waiting.erase(std::find(m_waiting.begin(), m_waiting.end(), queue));
    }
    void End() {
        m_isOver = true;
        const std::lock_guard lock(m_lock);
        for (const auto& queue : m_waiting)
            queue->PostNews();
    }

    std::mutex m_lock;
    std::vector<std::shared_ptr<MessageQueue>> m_waiting;
    std::atomic<bool> m_isOver{false};
    std::thread m_thread;
};

// The workers that one thread has started and that may still run. The thread ends after them.
class StartedHere {
public:
    static StartedHere& OfThisThread() {
        static thread_local StartedHere current;
        return current;
    }
    ~StartedHere() { WaitForAll(); }
    StartedHere(const StartedHere&) = delete;
    StartedHere& operator=(const StartedHere&) = delete;

    void Add(std::shared_ptr<RealWorker> worker) {
        std::erase_if(m_workers, [](const auto& one) { return one->IsOver(); });
        m_workers.push_back(std::move(worker));
    }
    // Messages handled meanwhile may start further ones.
    void WaitForAll() {
        while (!m_workers.empty()) {
            const auto worker = m_workers.back();
            worker->Wait(INFINITE);
            std::erase(m_workers, worker);
        }
    }

private:
    StartedHere() { MessageQueue::OfThisThread(); } // which then ends after this

    std::vector<std::shared_ptr<RealWorker>> m_workers;
};

class RealWorkers final : public WorkerThreads {
public:
    std::shared_ptr<WorkerThread> Start(std::function<void()> procedure) override {
        StartedHere& startedHere = StartedHere::OfThisThread();
        const auto worker = std::make_shared<RealWorker>();
        try {
            worker->Begin([procedure = std::move(procedure)] {
                procedure();
                StartedHere::OfThisThread().WaitForAll();
            });
        } catch (const std::system_error& error) {
            SetLastError(ErrorFromErrno(error.code().value()));
            return nullptr;
        }
        startedHere.Add(worker);
        return worker;
    }
};

} // namespace

WorkerThreads& WorkerThreads::Real() {
    static RealWorkers workers;
    return workers;
}

} // namespace platform
