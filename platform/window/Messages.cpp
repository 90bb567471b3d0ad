#include <platform/LastError.h>
#include <platform/Messages.h>

#include "window/MessageQueue.h"
#include "window/WindowTable.h"

using platform::MessageQueue;
using platform::WindowState;
using platform::WindowTable;

namespace {

std::shared_ptr<MessageQueue> QueueOf(HWND hWnd) {
    std::shared_ptr<MessageQueue> queue;
    WindowTable::Get().Visit(hWnd, [&](WindowState& state) { queue = state.queue; });
    if (!queue) SetLastError(ERROR_INVALID_WINDOW_HANDLE);
    return queue;
}

} // namespace

BOOL PeekMessageA(MSG* pMsg, HWND hWnd, UINT nFilterMin, UINT nFilterMax, UINT nRemove) {
    MessageQueue& queue = *MessageQueue::OfThisThread();
    queue.HandleSentMessages();
    return queue.Take(*pMsg, hWnd, nFilterMin, nFilterMax, nRemove == PM_REMOVE) ? TRUE : FALSE;
}

// There is no keyboard here whose key messages could become characters.
BOOL TranslateMessage(const MSG*) {
    return FALSE;
}

LRESULT DispatchMessageA(const MSG* pMsg) {
    WNDPROC procedure = nullptr;
    WindowTable::Get().Visit(pMsg->hwnd, [&](WindowState& state) { procedure = state.procedure; });
    return procedure ? procedure(pMsg->hwnd, pMsg->message, pMsg->wParam, pMsg->lParam) : 0;
}

BOOL PostMessageA(HWND hWnd, UINT nMessage, WPARAM wParam, LPARAM lParam) {
    const auto queue = QueueOf(hWnd);
    return queue && queue->Post({hWnd, nMessage, wParam, lParam}) ? TRUE : FALSE;
}

LRESULT SendMessageA(HWND hWnd, UINT nMessage, WPARAM wParam, LPARAM lParam) {
    const auto queue = QueueOf(hWnd);
    if (!queue) return 0;
    const MSG message{hWnd, nMessage, wParam, lParam};
    return queue == MessageQueue::OfThisThread() ? DispatchMessageA(&message)
                                                 : queue->Send(message);
}

DWORD MsgWaitForMultipleObjects(DWORD nCount, const void* pHandles, BOOL, DWORD dwMilliseconds,
                                DWORD) {
    if (nCount != 0 || pHandles) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return 0xFFFFFFFFu;
    }
    return MessageQueue::OfThisThread()->WaitForInput(dwMilliseconds) ? WAIT_OBJECT_0
                                                                      : WAIT_TIMEOUT;
}

BOOL WaitForApartmentNews(DWORD dwMilliseconds) {
    return MessageQueue::OfThisThread()->WaitForNews(dwMilliseconds) ? TRUE : FALSE;
}
