// A window on a display, as the threads see it that show it and ask about it.
#pragma once

#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>

#include <platform/Types.h>

#include "window/ForeignWindow.h"
#include "window/display/CommandQueue.h"

namespace platform {

struct WindowCondition {
    bool isVisible = false;   // mapped and not iconified
    bool isViewable = false;  // nothing that it is in is unmapped
    bool isWithdrawn = false; // unmapped, and no window manager has it
};

// Any thread, except where it says otherwise.
class DisplayWindow final : public ForeignWindow,
                            public std::enable_shared_from_this<DisplayWindow> {
public:
    DisplayWindow(std::uint32_t id, std::shared_ptr<CommandQueue> display)
        : m_id(id), m_display(std::move(display)) {}

    std::uint32_t Id() const { return m_id; }
    HWND Handle() const { return reinterpret_cast<HWND>(std::uintptr_t{m_id}); }

    void Show(bool isVisible) override;
    void Raise() override;
    // Like Show, for the one who is not told then.
    void ShowByOwner(bool isVisible);
    bool IsVisible();
    // Called when the visibility changes other than by ShowByOwner, on the display's thread. It
    // must not wait for another thread. Once a null one is set, no call runs or comes.
    void OnVisibleChanged(std::function<void(bool)> handler);
    // Waits for NoteEntered; false when the window is gone, or the display too slow.
    bool WaitUntilEntered();

    // The display's thread.
    void Note(const WindowCondition& condition);
    void NoteEntered();
    // Nothing more happens to it.
    void NoteGone(bool isReported);

private:
    void PostShow(bool isVisible);
    void WaitUntilShown(std::unique_lock<std::mutex>& lock, bool isVisible);
    void Report(std::unique_lock<std::mutex>& lock);

    const std::uint32_t m_id;
    const std::shared_ptr<CommandQueue> m_display;

    std::mutex m_mutex;
    std::condition_variable m_changed;
    WindowCondition m_condition;
    bool m_isGone = false;
    bool m_isEntered = false;
    bool m_isOwnerAtIt = false;
    bool m_reported = false; // what the owner believes

    std::mutex m_handlerMutex; // held while the handler runs; never taken under m_mutex
    std::function<void(bool)> m_handler;
};

} // namespace platform
