// Message queues across threads, and windows as their owners.

#include <atomic>
#include <future>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include <platform/Apartment.h>
#include <platform/Automation.h>
#include <platform/LastError.h>
#include <platform/Window.h>

#include "support/ManualClock.h"
#include "support/TestWindow.h"
#include "window/BrowserWindow.h"

using test_support::TestWindow;

namespace {

thread_local std::vector<UINT> received;
thread_local HWND replyTo = nullptr;

// Notes what it receives; answers with twice the number, asking back when told to.
LRESULT NotingProcedure(HWND, UINT message, WPARAM wParam, LPARAM) {
    received.push_back(message);
    if (replyTo && wParam) return SendMessageA(replyTo, WM_USER + 9, 0, 0) + 1;
    return static_cast<LRESULT>(message) * 2;
}

// Stays until it is destroyed or the thread ends.
HWND NotingWindow(const char* title = "noting") {
    AfxRegisterWindowClass("NotingWindow", &NotingProcedure);
    received.clear();
    return CreateWindowExA(0, "NotingWindow", title, 0, 0, 0, 1, 1, nullptr, nullptr, nullptr,
                           nullptr);
}

void Pump() {
    MSG message;
    while (PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE))
        DispatchMessageA(&message);
}

// A thread with a noting window that serves its messages until it is told to end.
class ServingThread {
public:
    ServingThread() : m_thread([this] { Run(); }) { window = m_ready.get_future().get(); }
    ~ServingThread() {
        m_isEnding = true;
        PostMessageA(window, WM_USER, 0, 0);
        m_thread.join();
    }
    HWND window = nullptr;
    HWND askBack = nullptr; // set before the first message

private:
    void Run() {
        m_ready.set_value(NotingWindow("serving"));
        while (!m_isEnding) {
            MsgWaitForMultipleObjects(0, nullptr, FALSE, 1000, QS_ALLINPUT);
            replyTo = askBack;
            Pump();
        }
    }
    std::promise<HWND> m_ready;
    std::atomic<bool> m_isEnding{false};
    std::thread m_thread;
};

} // namespace

TEST(Messages, ArePostedInOrderAndTakenByWindowAndNumber) {
    const HWND first = NotingWindow("first");
    const HWND second = NotingWindow("second");
    PostMessageA(first, WM_USER + 1, 0, 0);
    PostMessageA(second, WM_USER + 2, 0, 0);
    PostMessageA(first, WM_USER + 3, 0, 0);
    MSG message;
    EXPECT_TRUE(PeekMessageA(&message, second, 0, 0, PM_NOREMOVE));
    EXPECT_EQ(message.message, WM_USER + 2);
    EXPECT_FALSE(PeekMessageA(&message, first, WM_USER + 4, WM_USER + 9, PM_REMOVE));
    EXPECT_TRUE(PeekMessageA(&message, nullptr, WM_USER + 3, WM_USER + 3, PM_REMOVE));
    Pump();
    EXPECT_EQ(received, (std::vector<UINT>{WM_USER + 1, WM_USER + 2}));

    PostMessageA(second, WM_USER + 5, 0, 0);
    DestroyWindow(second);
    Pump();
    EXPECT_EQ(received.back(), WM_DESTROY);
    EXPECT_FALSE(PostMessageA(second, WM_USER, 0, 0));
    EXPECT_EQ(GetLastError(), ERROR_INVALID_WINDOW_HANDLE);
    EXPECT_EQ(SendMessageA(second, WM_USER, 0, 0), 0);
    DestroyWindow(first);
}

TEST(Messages, ASenderHandlesWhatIsSentBackToItMeanwhile) {
    const HWND own = NotingWindow();
    ServingThread other;
    EXPECT_FALSE(DestroyWindow(other.window));
    EXPECT_EQ(GetLastError(), ERROR_ACCESS_DENIED);
    other.askBack = own;
    EXPECT_EQ(SendMessageA(other.window, WM_USER + 4, 1, 0), 2 * (WM_USER + 9) + 1);
    EXPECT_EQ(received, std::vector<UINT>{WM_USER + 9});
    DestroyWindow(own);
}

TEST(Messages, TheEndOfAThreadLetsItsSendersGoAndTakesItsWindows) {
    std::promise<HWND> created;
    std::promise<void> mayEnd;
    std::thread owner([&] {
        created.set_value(NotingWindow("ending"));
        mayEnd.get_future().wait(); // never serves a message
    });
    const HWND window = created.get_future().get();
    auto answer = std::async(std::launch::async,
                             [window] { return SendMessageA(window, WM_USER + 1, 0, 0); });
    mayEnd.set_value();
    owner.join();
    EXPECT_EQ(answer.get(), 0);
    EXPECT_FALSE(IsWindow(window));
    EXPECT_EQ(FindWindowA(nullptr, "ending"), nullptr);
}

TEST(Windows, AreFoundByExactTitleTheFrontmostFirst) {
    const TestWindow back("same");
    const TestWindow front("same");
    EXPECT_EQ(FindWindowA(nullptr, "same"), front);
    EXPECT_EQ(FindWindowA(nullptr, "Same"), nullptr);
    SetForegroundWindow(back);
    EXPECT_EQ(FindWindowA(nullptr, "same"), back);
    EXPECT_EQ(GetForegroundWindow(), back);
    const TestWindow child("child", back);
    EXPECT_TRUE(IsWindowVisible(child));
    EXPECT_EQ(GetParent(child), back);
    EXPECT_EQ(FindWindowA(nullptr, "child"), nullptr);
    DestroyWindow(back);
    EXPECT_FALSE(IsWindow(child));
    EXPECT_EQ(GetForegroundWindow(), nullptr);
}

TEST(Windows, ReleaseTheControlTheyHostWhenTheyGo) {
    class Control final : public ComObject<IUnknown> {
    public:
        explicit Control(std::atomic<int>& alive) : m_alive(alive) { ++m_alive; }
        ~Control() override { --m_alive; }

    private:
        std::atomic<int>& m_alive;
    };
    std::atomic<int> alive{0};
    const TestWindow window;
    AtlAxAttachControl(MakeObject<Control>(alive).Get(), window, nullptr);
    AtlAxAttachControl(MakeObject<Control>(alive).Get(), window, nullptr); // replaces the first
    EXPECT_EQ(alive, 1);
    DestroyWindow(window);
    EXPECT_EQ(alive, 0);
    std::thread([&] {
        AtlAxAttachControl(MakeObject<Control>(alive).Get(), NotingWindow(), nullptr);
    }).join();
    EXPECT_EQ(alive, 0);
    EXPECT_TRUE(FAILED(AtlAxAttachControl(MakeObject<Control>(alive).Get(), window, nullptr)));
}

TEST(Apartment, RunsWorkOnItsThreadInTheOrderOfPosting) {
    const auto apartment = platform::Apartment::OfThisThread();
    const auto owner = std::this_thread::get_id();
    std::vector<int> order;
    std::thread([&] {
        for (int i = 0; i < 3; ++i)
            apartment->Post([&, i] {
                order.push_back(i);
                EXPECT_EQ(std::this_thread::get_id(), owner);
            });
    }).join();
    EXPECT_TRUE(order.empty());
    Pump();
    EXPECT_EQ(order, (std::vector<int>{0, 1, 2}));
}

TEST(Apartment, NewsEndsAPauseAndOtherMessagesDoNot) {
    test_support::ManualClock clock;
    const platform::ScopedService<platform::Clock> installed(clock);
    WaitForApartmentNews(1); // what earlier tests have left
    const TestWindow window;
    PostMessageA(window, WM_USER, 0, 0);
    const DWORD start = clock.TickCount();
    EXPECT_FALSE(WaitForApartmentNews(200));
    EXPECT_EQ(clock.TickCount() - start, 200u);

    platform::Apartment::OfThisThread()->Post([] {});
    Pump(); // news that was dispatched before the pause still ends it, once
    EXPECT_TRUE(WaitForApartmentNews(200));
    EXPECT_EQ(clock.TickCount() - start, 200u);
    EXPECT_FALSE(WaitForApartmentNews(200));

    // Woken by the posting, a loop looks before it dispatches: what the dispatch brings is news.
    platform::Apartment::OfThisThread()->Post([] {});
    EXPECT_TRUE(WaitForApartmentNews(200));
    Pump();
    EXPECT_TRUE(WaitForApartmentNews(200));
    EXPECT_FALSE(WaitForApartmentNews(200));
}

TEST(Apartment, DropsWorkForAThreadThatHasEnded) {
    std::shared_ptr<platform::Apartment> apartment;
    auto token = std::make_shared<int>(1);
    std::thread([&] {
        apartment = platform::Apartment::OfThisThread();
        apartment->Post([token] { ADD_FAILURE() << "ran after its thread"; });
    }).join();
    apartment->Post([token] { ADD_FAILURE() << "ran after its thread"; });
    EXPECT_EQ(token.use_count(), 1);
}

// A browser window without a display.
TEST(RememberedWindow, IsInTheTableWhileItLivesAndMayOutliveItsThread) {
    auto window = platform::MakeRememberedWindow();
    const HWND handle = window->Handle();
    EXPECT_FALSE(window->IsVisible());
    window->Show(true);
    EXPECT_TRUE(window->IsVisible() && IsWindowVisible(handle));
    window->SetEnabled(false);
    EXPECT_FALSE(IsWindowEnabled(handle));
    EXPECT_TRUE(SetForegroundWindow(handle));
    EXPECT_EQ(GetForegroundWindow(), handle);
    window.reset();
    EXPECT_FALSE(IsWindow(handle) || IsWindowEnabled(handle));
    EXPECT_EQ(GetForegroundWindow(), nullptr);

    std::thread([&] { window = platform::MakeRememberedWindow(); }).join();
    EXPECT_FALSE(IsWindow(window->Handle()));
    window->Show(true);
    EXPECT_FALSE(window->IsVisible());
}
