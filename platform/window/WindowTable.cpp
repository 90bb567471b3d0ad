#include "window/WindowTable.h"

#include <algorithm>

#include <platform/LastError.h>

#include "window/ForeignWindow.h"
#include "window/MessageQueue.h"

namespace platform {

namespace {

constexpr const char* kMessageOnlyClass = "Message";

} // namespace

WindowTable& WindowTable::Get() {
    static WindowTable table;
    return table;
}

bool WindowTable::RegisterClass(const CString& name, WNDPROC procedure) {
    const std::lock_guard lock(m_mutex);
    return m_classes.emplace(name, procedure).second;
}

HWND WindowTable::Insert(WindowState state, bool isInOrder) {
    const HWND handle = reinterpret_cast<HWND>(m_nextHandle);
    m_nextHandle += 2;
    m_windows.emplace(handle, std::move(state));
    if (isInOrder) m_order.push_front(handle);
    return handle;
}

HWND WindowTable::Create(const WindowRequest& request) {
    const auto queue = MessageQueue::OfThisThread();
    const std::lock_guard lock(m_mutex);
    const HWND parent = request.parent == GetDesktopWindow() ? nullptr : request.parent;
    const auto windowClass = m_classes.find(request.className.GetString());
    if (windowClass == m_classes.end() || (parent && !m_windows.contains(parent))) {
        SetLastError(parent ? ERROR_INVALID_WINDOW_HANDLE : ERROR_INVALID_PARAMETER);
        return nullptr;
    }
    WindowState state;
    state.made = request;
    state.isVisible = (request.style & WS_VISIBLE) != 0;
    state.parent = parent;
    state.procedure = windowClass->second;
    state.queue = queue;
    return Insert(std::move(state), parent == nullptr);
}

HWND WindowTable::CreateMessageOnly(const char* className) {
    const auto queue = MessageQueue::OfThisThread();
    const std::lock_guard lock(m_mutex);
    WindowState state;
    state.made.className = kMessageOnlyClass;
    state.procedure = m_classes.at(className);
    state.queue = queue;
    return Insert(std::move(state), false);
}

bool WindowTable::AddForeign(HWND handle, WindowState state) {
    const std::lock_guard lock(m_mutex);
    if (!m_windows.emplace(handle, std::move(state)).second) return false;
    m_order.push_front(handle);
    return true;
}

void WindowTable::RemoveForeign(HWND handle, const ForeignWindow& window) {
    bool isSame = false;
    Visit(handle, [&](WindowState& state) { isSame = state.foreign.get() == &window; });
    if (isSame) Remove(handle);
}

std::vector<HWND> WindowTable::ChildrenOf(HWND hWnd) {
    const std::lock_guard lock(m_mutex);
    std::vector<HWND> children;
    for (const auto& [handle, state] : m_windows)
        if (state.parent == hWnd) children.push_back(handle);
    return children;
}

bool WindowTable::Destroy(HWND hWnd) {
    WNDPROC procedure = nullptr;
    const bool isOwn = Visit(hWnd, [&](WindowState& state) {
        if (state.queue == MessageQueue::OfThisThread()) procedure = state.procedure;
    });
    if (!isOwn || !procedure) {
        SetLastError(isOwn ? ERROR_ACCESS_DENIED : ERROR_INVALID_WINDOW_HANDLE);
        return false;
    }
    procedure(hWnd, WM_DESTROY, 0, 0);
    for (const HWND child : ChildrenOf(hWnd))
        Destroy(child);
    Remove(hWnd);
    return true;
}

void WindowTable::Remove(HWND hWnd) {
    WindowState gone; // let go of the hosted control outside the lock
    {
        const std::lock_guard lock(m_mutex);
        const auto found = m_windows.find(hWnd);
        if (found == m_windows.end()) return;
        gone = std::move(found->second);
        m_windows.erase(found);
        m_order.remove(hWnd);
        if (m_foreground == hWnd) m_foreground = nullptr;
    }
    gone.queue->Forget(hWnd);
}

void WindowTable::DestroyWindowsOf(const MessageQueue& queue) {
    std::vector<HWND> own;
    {
        const std::lock_guard lock(m_mutex);
        for (const auto& [handle, state] : m_windows)
            if (state.queue.get() == &queue) own.push_back(handle);
    }
    for (const HWND handle : own)
        Remove(handle);
}

bool WindowTable::Visit(HWND hWnd, const std::function<void(WindowState&)>& change) {
    const std::lock_guard lock(m_mutex);
    const auto found = m_windows.find(hWnd);
    if (found == m_windows.end()) return false;
    change(found->second);
    return true;
}

bool WindowTable::Contains(HWND hWnd) {
    const std::lock_guard lock(m_mutex);
    return m_windows.contains(hWnd);
}

HWND WindowTable::Find(const char* className, const char* title) {
    const std::lock_guard lock(m_mutex);
    const auto found = std::find_if(m_order.begin(), m_order.end(), [&](HWND handle) {
        const WindowState& state = m_windows.at(handle);
        return state.made.title == title && (!className || state.made.className == className);
    });
    return found == m_order.end() ? nullptr : *found;
}

bool WindowTable::BringToTop(HWND hWnd) {
    std::shared_ptr<ForeignWindow> foreign;
    {
        const std::lock_guard lock(m_mutex);
        const auto window = m_windows.find(hWnd);
        if (window == m_windows.end()) return false;
        const auto found = std::find(m_order.begin(), m_order.end(), hWnd);
        if (found != m_order.end()) m_order.splice(m_order.begin(), m_order, found);
        foreign = window->second.foreign;
    }
    if (foreign) foreign->Raise();
    return true;
}

bool WindowTable::SetForeground(HWND hWnd) {
    if (!BringToTop(hWnd)) return false;
    const std::lock_guard lock(m_mutex);
    if (m_windows.contains(hWnd)) m_foreground = hWnd;
    return true;
}

HWND WindowTable::GetForeground() {
    const std::lock_guard lock(m_mutex);
    return m_foreground;
}

void WindowTable::NoteActive(HWND hWnd, bool isActive) {
    const std::lock_guard lock(m_mutex);
    if (isActive && m_windows.contains(hWnd)) m_foreground = hWnd;
    if (!isActive && m_foreground == hWnd) m_foreground = nullptr;
}

} // namespace platform
