#include "window/MessageQueue.h"

#include <algorithm>

#include <platform/Clock.h>
#include <platform/Thread.h>

#include "window/WindowTable.h"

namespace platform {

namespace {

// Ends a thread's part in the window system: its windows first, so that their procedures still
// find the queue, then the queue.
struct ThreadQueue {
    std::shared_ptr<MessageQueue> queue = std::make_shared<MessageQueue>();
    ~ThreadQueue() {
        WindowTable::Get().DestroyWindowsOf(*queue);
        queue->Close();
    }
};

bool Matches(const MSG& message, HWND hWnd, UINT filterMin, UINT filterMax) {
    if (hWnd && message.hwnd != hWnd) return false;
    if (filterMin == 0 && filterMax == 0) return true;
    return message.message >= filterMin && message.message <= filterMax;
}

} // namespace

const std::shared_ptr<MessageQueue>& MessageQueue::OfThisThread() {
    // The table is built first so that it is still there when the main thread's queue ends.
    WindowTable::Get();
    static thread_local ThreadQueue current;
    return current.queue;
}

bool MessageQueue::Post(const MSG& message) {
    const std::lock_guard lock(m_mutex);
    if (m_isClosed) return false;
    m_posted.push_back(message);
    m_hasNewInput = true;
    m_changed.notify_all();
    return true;
}

void MessageQueue::PostNews() {
    const std::lock_guard lock(m_mutex);
    m_hasNews = true;
    m_changed.notify_all();
}

bool MessageQueue::Enqueue(const std::shared_ptr<SentMessage>& sent) {
    const std::lock_guard lock(m_mutex);
    if (m_isClosed) return false;
    m_sent.push_back(sent);
    m_hasNewInput = true;
    m_changed.notify_all();
    return true;
}

LRESULT MessageQueue::Send(const MSG& message) {
    const auto own = OfThisThread();
    const auto sent = std::make_shared<SentMessage>();
    sent->message = message;
    sent->sender = own;
    if (!Enqueue(sent)) return 0;
    std::unique_lock lock(own->m_mutex);
    while (!sent->done) {
        own->m_changed.wait(lock, [&] { return sent->done || !own->m_sent.empty(); });
        if (sent->done) break;
        lock.unlock();
        own->HandleSentMessages();
        lock.lock();
    }
    return sent->result;
}

void MessageQueue::Complete(SentMessage& sent, LRESULT result) {
    const std::lock_guard lock(sent.sender->m_mutex);
    sent.result = result;
    sent.done = true;
    sent.sender->m_changed.notify_all();
}

void MessageQueue::HandleSentMessages() {
    for (;;) {
        std::shared_ptr<SentMessage> sent;
        {
            const std::lock_guard lock(m_mutex);
            if (m_sent.empty()) return;
            sent = m_sent.front();
            m_sent.pop_front();
        }
        Complete(*sent, DispatchMessageA(&sent->message));
    }
}

bool MessageQueue::Take(MSG& message, HWND hWnd, UINT filterMin, UINT filterMax, bool remove) {
    const std::lock_guard lock(m_mutex);
    m_hasNewInput = false;
    const auto found = std::find_if(m_posted.begin(), m_posted.end(), [&](const MSG& candidate) {
        return Matches(candidate, hWnd, filterMin, filterMax);
    });
    if (found == m_posted.end()) return false;
    message = *found;
    if (remove) m_posted.erase(found);
    return true;
}

bool MessageQueue::WaitForInput(DWORD milliseconds) {
    std::unique_lock lock(m_mutex);
    return Current<Clock>().WaitFor(lock, m_changed, milliseconds,
                                    [this] { return m_hasNewInput; });
}

bool MessageQueue::WaitForNews(DWORD milliseconds) {
    std::unique_lock lock(m_mutex);
    const bool hasNews =
        Current<Clock>().WaitFor(lock, m_changed, milliseconds, [this] { return m_hasNews; });
    m_hasNews = false;
    return hasNews;
}

bool MessageQueue::WaitUntil(const std::function<bool()>& isOver, DWORD milliseconds) {
    const DWORD start = GetTickCount();
    const auto hasCause = [&] { return isOver() || !m_sent.empty(); };
    for (;;) {
        HandleSentMessages();
        const DWORD elapsed = GetTickCount() - start;
        std::unique_lock lock(m_mutex);
        if (isOver()) return true;
        if (milliseconds == INFINITE)
            m_changed.wait(lock, hasCause);
        else if (elapsed < milliseconds)
            Current<Clock>().WaitFor(lock, m_changed, milliseconds - elapsed, hasCause);
        else
            return false;
    }
}

void MessageQueue::Forget(HWND hWnd) {
    const std::lock_guard lock(m_mutex);
    std::erase_if(m_posted, [hWnd](const MSG& message) { return message.hwnd == hWnd; });
}

void MessageQueue::Close() {
    std::deque<std::shared_ptr<SentMessage>> abandoned;
    {
        const std::lock_guard lock(m_mutex);
        m_isClosed = true;
        m_posted.clear();
        abandoned.swap(m_sent);
    }
    for (const auto& sent : abandoned)
        Complete(*sent, 0);
}

} // namespace platform
