// A message queue for each thread.
#pragma once

#include "Export.h"
#include "Types.h"

ZRHB_EXPORT_BEGIN

struct MSG {
    HWND hwnd = nullptr;
    UINT message = 0;
    WPARAM wParam = 0;
    LPARAM lParam = 0;
};

constexpr UINT PM_NOREMOVE = 0;
constexpr UINT PM_REMOVE = 1;
constexpr UINT WM_USER = 0x0400;
constexpr UINT QS_ALLINPUT = 0x04FF;
constexpr DWORD WAIT_OBJECT_0 = 0;
constexpr DWORD WAIT_TIMEOUT = 258;

// First handles the messages that other threads have sent to windows of this thread, then takes
// the oldest posted one for hWnd (null: for any window of the thread, and for the thread itself)
// between the two message numbers (0, 0: all). FALSE when there is none.
BOOL PeekMessageA(MSG* pMsg, HWND hWnd, UINT nFilterMin, UINT nFilterMax, UINT nRemove);
BOOL TranslateMessage(const MSG* pMsg);
// Calls the window's procedure; 0 for a message without a window or whose window is gone.
LRESULT DispatchMessageA(const MSG* pMsg);

// Appends to the queue of the window's thread; FALSE with ERROR_INVALID_WINDOW_HANDLE when there
// is no such window.
BOOL PostMessageA(HWND hWnd, UINT nMessage, WPARAM wParam, LPARAM lParam);
// Returns when the window's procedure has handled the message: called at once when the window
// belongs to the calling thread, else by its owner at its next PeekMessageA or wait. Messages sent
// to the waiting thread meanwhile are handled. 0 when the window is or goes away.
LRESULT SendMessageA(HWND hWnd, UINT nMessage, WPARAM wParam, LPARAM lParam);

// Waits until the thread's queue has a message that was not there at the last look, or the time is
// over (WAIT_TIMEOUT). There are no handles to wait for here: nCount is 0 and pHandles null.
DWORD MsgWaitForMultipleObjects(DWORD nCount, const void* pHandles, BOOL bWaitAll,
                                DWORD dwMilliseconds, DWORD dwWakeMask);

// Waits until an object living in this thread's apartment has posted news (an event, a state
// change), or had it dispatched, since the last call; at most dwMilliseconds. TRUE for news. Other
// messages do not end the wait.
BOOL WaitForApartmentNews(DWORD dwMilliseconds);

ZRHB_EXPORT_END
