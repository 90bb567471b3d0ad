#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <future>
#include <mutex>
#include <thread>

#include <platform/Settings.h>

#include "window/BrowserWindow.h"
#include "window/MessageQueue.h"
#include "window/WindowTable.h"
#include "window/display/DisplayThread.h"
#include "window/display/DisplayWindows.h"

namespace platform {
namespace {

constexpr std::chrono::seconds kPatienceWithTheServer{5};
constexpr std::chrono::seconds kLostAfter{1}; // for a window that should have been mapped

class XDisplay;

class WindowOnDisplay final : public BrowserWindow {
public:
    WindowOnDisplay(std::shared_ptr<XDisplay> display, std::shared_ptr<CommandQueue> commands,
                    std::shared_ptr<DisplayWindow> window)
        : m_display(std::move(display)), m_commands(std::move(commands)),
          m_window(std::move(window)) {}
    ~WindowOnDisplay() override {
        m_window->OnVisibleChanged(nullptr);
        WindowTable::Get().RemoveForeign(m_window->Handle(), *m_window);
        m_commands->Post([id = m_window->Id()](DisplayWindows& windows) { windows.Forget(id); });
    }
    WindowOnDisplay(const WindowOnDisplay&) = delete;
    WindowOnDisplay& operator=(const WindowOnDisplay&) = delete;

    HWND Handle() const override { return m_window->Handle(); }
    void Show(bool isVisible) override { m_window->ShowByOwner(isVisible); }
    bool IsVisible() const override { return m_window->IsVisible(); }
    void SetEnabled(bool isEnabled) override { EnableWindow(Handle(), isEnabled ? TRUE : FALSE); }
    void OnVisibleChanged(std::function<void(bool)> handler) override {
        m_window->OnVisibleChanged(std::move(handler));
    }

private:
    const std::shared_ptr<XDisplay> m_display; // as long as somebody has a window, it is served
    const std::shared_ptr<CommandQueue> m_commands;
    const std::shared_ptr<DisplayWindow> m_window;
};

class XWindowWatch final : public WindowWatch {
public:
    XWindowWatch(std::shared_ptr<XDisplay> display, std::shared_ptr<CommandQueue> commands,
                 const std::string& instance)
        : m_display(std::move(display)), m_commands(std::move(commands)),
          m_appeared(std::make_shared<AppearedWindows>(instance)) {
        const bool isServed = m_commands->Post(
            [appeared = m_appeared](DisplayWindows& windows) { windows.Add(appeared); });
        if (!isServed) m_appeared->Close();
        m_appeared->WaitUntilWatched();
    }
    ~XWindowWatch() override {
        m_appeared->Close();
        m_commands->Post(
            [appeared = m_appeared](DisplayWindows& windows) { windows.Remove(*appeared); });
    }
    XWindowWatch(const XWindowWatch&) = delete;
    XWindowWatch& operator=(const XWindowWatch&) = delete;

    std::unique_ptr<BrowserWindow> TakeWindow(std::chrono::milliseconds patience) override {
        using Clock = std::chrono::steady_clock;
        for (const auto end = Clock::now() + patience; Clock::now() < end;) {
            const auto window = m_appeared->Take(std::min(end, Clock::now() + kLostAfter));
            if (auto taken = window ? Enter(window) : nullptr) return taken;
            if (m_appeared->IsClosed() || Clock::now() >= end) break;
            m_commands->Post([appeared = m_appeared](DisplayWindows& windows) {
                windows.MapFirstHeld(*appeared);
            });
        }
        return nullptr;
    }

private:
    // Null when the window is gone already.
    std::unique_ptr<BrowserWindow> Enter(const std::shared_ptr<DisplayWindow>& window) {
        m_commands->Post([id = window->Id(), queue = MessageQueue::OfThisThread()](
                             DisplayWindows& windows) { windows.Enter(id, queue); });
        const bool isEntered = window->WaitUntilEntered();
        auto taken = std::make_unique<WindowOnDisplay>(m_display, m_commands, window);
        return isEntered ? std::move(taken) : nullptr;
    }

    const std::shared_ptr<XDisplay> m_display;
    const std::shared_ptr<CommandQueue> m_commands;
    const std::shared_ptr<AppearedWindows> m_appeared;
};

class XDisplay final : public Display, public std::enable_shared_from_this<XDisplay> {
public:
    XDisplay(std::string name, std::unique_ptr<XConnection> connection)
        : m_name(std::move(name)), m_thread(std::move(connection)) {}

    const std::string& Name() const override { return m_name; }
    std::unique_ptr<WindowWatch> Watch(const std::string& instance) override {
        return std::make_unique<XWindowWatch>(shared_from_this(), m_thread.Commands(), instance);
    }
    bool IsBroken() const { return m_thread.IsBroken(); }
    void End() { m_thread.End(); }

private:
    const std::string m_name;
    DisplayThread m_thread;
};

// On a thread of its own: a server that takes connections but never answers would keep the caller
// for ever.
std::unique_ptr<XConnection> OpenInTime(const std::string& name) {
    auto opened = std::make_shared<std::promise<std::unique_ptr<XConnection>>>();
    auto connection = opened->get_future();
    std::thread([opened, name] {
        BlockSignals();
        opened->set_value(XConnection::Open(name));
    }).detach();
    const bool isInTime = connection.wait_for(kPatienceWithTheServer) == std::future_status::ready;
    return isInTime ? connection.get() : nullptr;
}

// The process's connection. At the end of the process its thread ends while the window table is
// still there.
struct SharedConnection {
    SharedConnection() { WindowTable::Get(); }
    ~SharedConnection() {
        if (const auto display = current.lock()) display->End();
    }
    SharedConnection(const SharedConnection&) = delete;
    SharedConnection& operator=(const SharedConnection&) = delete;

    std::mutex mutex;
    std::weak_ptr<XDisplay> current;
};

} // namespace

std::shared_ptr<Display> Display::Open() {
    const char* const name = std::getenv("DISPLAY");
    if (!name || !*name || GetSetting("ZRHTTP_HEADLESS").value == "1") return nullptr;
    static SharedConnection shared;
    const std::lock_guard lock(shared.mutex);
    auto display = shared.current.lock();
    if (display && !display->IsBroken() && display->Name() == name) return display;
    auto connection = OpenInTime(name);
    if (!connection) return nullptr;
    display = std::make_shared<XDisplay>(name, std::move(connection));
    shared.current = display;
    return display;
}

} // namespace platform
