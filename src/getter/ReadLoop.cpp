#include "getter/ReadLoop.h"

#include <algorithm>

#include <platform/Window.h>

namespace ReadLoop {

namespace {

constexpr DWORD kPauseMs = 200;

void Clear(CString& page) {
    page.Empty();
}
void Clear(CByteBuffer& page) {
    page.RemoveAll();
}

bool IsLoading(DWORD result) {
    return result == ZRHB_STILL_LOADING || result == ZRHB_LOADED_IDLE;
}

// Brings each window that has come up with one of the titles to the front, and drops its title.
void SurfaceWindows(CStringArray& titles) {
    for (int i = titles.GetSize() - 1; i >= 0; --i) {
        const HWND window = FindWindowA(nullptr, titles[i]);
        if (!window) continue;
        BringWindowToTop(window);
        SetForegroundWindow(window);
        SetActiveWindow(window);
        titles.RemoveAt(i);
    }
}

// 29 when the browser has been idle for too long, else 0.
DWORD NoteIdle(CZrHbUHttpGet_Impl& state, DWORD dwIdleTimeout, CString& strErr) {
    const CTime now = CTime::GetCurrentTime();
    if (!state.isIdle) state.idleStart = now;
    state.isIdle = true;
    const DWORD limit = dwIdleTimeout / 1000;
    if (dwIdleTimeout == 0 || now <= state.idleStart + CTimeSpan(limit)) return ZRHB_OK;
    strErr.Format("Idle-Timeout after %d seconds: no new page started loading (e.g. with ONLOAD).",
                  static_cast<int>(limit));
    return ZRHB_IDLE_TIMEOUT;
}

void NoteEndOfIdle(CZrHbUHttpGet_Impl& state, DWORD result) {
    state.isIdle = false;
    if (result < ZRHB_CONNECT_FAILED)
        state.longestIdle = std::max(state.longestIdle, CTime::GetCurrentTime() - state.idleStart);
}

// One pass of waiting; false when the callback wants to stop.
bool Pause(const Request& request, DWORD nLength, CStringArray& titles) {
    if (request.pfnCallback && request.pfnCallback(request.pCallbackContext, nLength) != 0)
        return false;
    CZrHbUHttpGet::HandleWinMessageQueue();
    SurfaceWindows(titles);
    WaitForApartmentNews(kPauseMs);
    return true;
}

} // namespace

template <class TPage>
DWORD Step(CZrHbUHttpGet_Impl& state, TPage& page, CString& strErr, DWORD& nLength, CString& strUrl,
           DWORD dwTimeout, BOOL bLargeData) {
    strUrl.Empty();
    strErr.Empty();
    Clear(page);
    if (!state.isPageOpen || !state.backend) {
        state.specialContentType.Restore();
        strErr = "Cannot read: no previous Open() or already Close()'d or Disconnect()-ed.";
        return ZRHB_NO_OPEN_PAGE;
    }
    const auto backend = state.backend.Hold(); // its Read may serve messages
    DWORD result = backend->Read(page, strErr, nLength, strUrl);
    state.NoteProgress(nLength);
    if (IsLoading(result) && state.IsTimedOut(state.EffectiveTimeout(dwTimeout, bLargeData))) {
        strErr.Format("Timeout occured while reading from page %s", state.strLastUrl.GetString());
        result = ZRHB_READ_TIMEOUT;
    }
    const bool isDelivered = result == ZRHB_OK && !state.bKeepPageOpen;
    if (result >= ZRHB_CONNECT_FAILED || isDelivered) state.Close();
    if (IsLoading(result)) CZrHbUHttpGet::HandleWinMessageQueue();
    strErr.TrimRight();
    if (result == ZRHB_OK && strUrl.IsEmpty()) strUrl = state.Location();
    return result;
}

template <class TPage>
DWORD Wait(CZrHbUHttpGet_Impl& state, TPage& page, CString& strErr, CString& strUrl,
           const Request& request) {
    CStringArray titles;
    if (request.pTitles) titles.Copy(*request.pTitles);
    for (;;) {
        DWORD nLength = 0;
        const DWORD result =
            Step(state, page, strErr, nLength, strUrl, request.dwTimeout, request.bLargeData);
        if (result == ZRHB_LOADED_IDLE) {
            if (NoteIdle(state, request.dwIdleTimeout, strErr) != ZRHB_OK) return ZRHB_IDLE_TIMEOUT;
        } else {
            NoteEndOfIdle(state, result);
            if (result != ZRHB_STILL_LOADING) return result;
        }
        if (!Pause(request, nLength, titles)) return ZRHB_STOPPED;
    }
}

template DWORD Step(CZrHbUHttpGet_Impl&, CString&, CString&, DWORD&, CString&, DWORD, BOOL);
template DWORD Step(CZrHbUHttpGet_Impl&, CByteBuffer&, CString&, DWORD&, CString&, DWORD, BOOL);
template DWORD Wait(CZrHbUHttpGet_Impl&, CString&, CString&, CString&, const Request&);
template DWORD Wait(CZrHbUHttpGet_Impl&, CByteBuffer&, CString&, CString&, const Request&);

} // namespace ReadLoop
