// The process's windows. One object with one lock; window procedures are never called under it.
#pragma once

#include <functional>
#include <list>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include <platform/Unknown.h>
#include <platform/Window.h>

namespace platform {

class ForeignWindow;
class MessageQueue;

// The class of the windows of browser applications.
constexpr const char* kBrowserWindowClass = "BrowserFrame";

struct WindowState {
    WindowRequest made; // as it was created; the title follows its changes
    bool isVisible = false;
    bool isEnabled = true;
    HWND parent = nullptr; // null for a top-level window
    WNDPROC procedure = nullptr;
    std::shared_ptr<MessageQueue> queue;
    CComPtr<IUnknown> container;            // of the control that the window hosts
    std::shared_ptr<ForeignWindow> foreign; // null for a window of the table only
};

class WindowTable {
public:
    static WindowTable& Get();

    bool RegisterClass(const CString& name, WNDPROC procedure);
    // Null with GetLastError() when class or parent is unknown. The window belongs to the calling
    // thread.
    HWND Create(const WindowRequest& request);
    // Like Create, for a window that no search finds: it only receives messages.
    HWND CreateMessageOnly(const char* className);
    // Enters a top-level window that lives elsewhere, with the given handle (below 0x20000000), in
    // front of all others. False when the handle is in use.
    bool AddForeign(HWND handle, WindowState state);
    // Only when that window stands behind the handle.
    void RemoveForeign(HWND handle, const ForeignWindow& window);
    bool Destroy(HWND hWnd);
    void DestroyWindowsOf(const MessageQueue& queue);

    // Runs `change` on the window's state under the lock; false when there is no such window.
    bool Visit(HWND hWnd, const std::function<void(WindowState&)>& change);
    bool Contains(HWND hWnd);
    HWND Find(const char* className, const char* title);
    bool BringToTop(HWND hWnd);
    bool SetForeground(HWND hWnd);
    HWND GetForeground();
    // A display reports that a window has become the active one, or stopped being it.
    void NoteActive(HWND hWnd, bool isActive);

private:
    HWND Insert(WindowState state, bool isInOrder);
    std::vector<HWND> ChildrenOf(HWND hWnd);
    void Remove(HWND hWnd);

    std::mutex m_mutex;
    std::map<std::string, WNDPROC> m_classes{{"LISTBOX", &DefWindowProcA}};
    std::map<HWND, WindowState> m_windows;
    std::list<HWND> m_order; // top-level windows, front-most first
    HWND m_foreground = nullptr;
    std::uintptr_t m_nextHandle = 0x20000010; // numbers of a display's windows are below
};

} // namespace platform
