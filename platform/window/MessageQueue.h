// One thread's messages: posted ones in order, sent ones from other threads, and the mark that an
// object of the thread's apartment has news.
#pragma once

#include <condition_variable>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>

#include <platform/Messages.h>

namespace platform {

class MessageQueue {
public:
    // The calling thread's queue; made on first use, closed when the thread ends.
    static const std::shared_ptr<MessageQueue>& OfThisThread();

    // Any thread. False once the queue is closed.
    bool Post(const MSG& message);
    void PostNews();
    // Any thread but the owner: returns when the owner has handled the message. 0 when the owner
    // ends first.
    LRESULT Send(const MSG& message);

    // Owner's thread only, from here on.
    void HandleSentMessages();
    bool Take(MSG& message, HWND hWnd, UINT filterMin, UINT filterMax, bool remove);
    bool WaitForInput(DWORD milliseconds);
    bool WaitForNews(DWORD milliseconds);
    // Waits until isOver() holds, which is asked whenever the queue changes or has news, and
    // handles the messages sent meanwhile. False when the time is over; INFINITE has no end.
    bool WaitUntil(const std::function<bool()>& isOver, DWORD milliseconds);
    // Drops what a destroyed window has not received yet.
    void Forget(HWND hWnd);
    // Refuses further messages and lets waiting senders go.
    void Close();

private:
    struct SentMessage {
        MSG message;
        LRESULT result = 0;
        bool done = false;
        std::shared_ptr<MessageQueue> sender;
    };
    bool Enqueue(const std::shared_ptr<SentMessage>& sent);
    static void Complete(SentMessage& sent, LRESULT result);

    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::deque<MSG> m_posted;
    std::deque<std::shared_ptr<SentMessage>> m_sent;
    bool m_hasNewInput = false;
    bool m_hasNews = false;
    bool m_isClosed = false;
};

} // namespace platform
