#include <platform/Apartment.h>

#include <deque>
#include <mutex>

#include "window/MessageQueue.h"
#include "window/WindowTable.h"

namespace platform {

namespace {

constexpr const char* kWindowClass = "ApartmentWindow";
constexpr UINT kRunWork = WM_USER + 1;

class ThreadApartment final : public Apartment {
public:
    ThreadApartment() : m_queue(MessageQueue::OfThisThread()) {
        AfxRegisterWindowClass(kWindowClass, &ThreadApartment::WindowProcedure);
        m_window = WindowTable::Get().CreateMessageOnly(kWindowClass);
    }

    void Post(std::function<void()> work) override {
        {
            const std::lock_guard lock(m_mutex);
            if (m_isClosed) return;
            m_work.push_back(std::move(work));
        }
        m_queue->Post({m_window, kRunWork, 0, 0});
        m_queue->PostNews();
    }

    // The thread ends: what is left is dropped unrun, on this thread.
    void Close() {
        std::deque<std::function<void()>> left;
        {
            const std::lock_guard lock(m_mutex);
            m_isClosed = true;
            left.swap(m_work);
        }
    }

private:
    static LRESULT WindowProcedure(HWND, UINT message, WPARAM, LPARAM);

    void RunNext() {
        std::function<void()> work;
        {
            const std::lock_guard lock(m_mutex);
            if (m_work.empty()) return;
            work = std::move(m_work.front());
            m_work.pop_front();
        }
        work();
        // Posting has woken the thread; only now is there something new to see.
        m_queue->PostNews();
    }

    const std::shared_ptr<MessageQueue> m_queue;
    HWND m_window = nullptr;
    std::mutex m_mutex;
    std::deque<std::function<void()>> m_work;
    bool m_isClosed = false;
};

struct CurrentApartment {
    std::shared_ptr<ThreadApartment> apartment = std::make_shared<ThreadApartment>();
    // Hosted controls go first: they may still speak to their apartment.
    ~CurrentApartment() {
        WindowTable::Get().DestroyWindowsOf(*MessageQueue::OfThisThread());
        apartment->Close();
    }
};

const std::shared_ptr<ThreadApartment>& ApartmentOfThisThread() {
    MessageQueue::OfThisThread(); // outlives the apartment
    static thread_local CurrentApartment current;
    return current.apartment;
}

LRESULT ThreadApartment::WindowProcedure(HWND, UINT message, WPARAM, LPARAM) {
    if (message == kRunWork) ApartmentOfThisThread()->RunNext();
    return 0;
}

} // namespace

std::shared_ptr<Apartment> Apartment::OfThisThread() {
    return ApartmentOfThisThread();
}

} // namespace platform
