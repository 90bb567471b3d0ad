// The getter's state.
#pragma once

#include <memory>
#include <utility>

#include <ZrAbAppGroup.h>
#include <platform/String.h>
#include <platform/Time.h>

#include "backends/ZrHbHttpGet.h"
#include "getter/ContentTypeSubstitution.h"

// The back-end alone is not copied: a copy is not connected.
class OwnedBackend {
public:
    OwnedBackend() = default;
    OwnedBackend(const OwnedBackend&) {}
    OwnedBackend& operator=(const OwnedBackend&) { return *this; }
    OwnedBackend& operator=(std::unique_ptr<CZrHbHttpGet> backend) {
        m_backend = std::move(backend);
        return *this;
    }
    CZrHbHttpGet* operator->() const { return m_backend.get(); }
    explicit operator bool() const { return m_backend != nullptr; }
    // For calls that serve the thread's messages: what is handled there may disconnect.
    std::shared_ptr<CZrHbHttpGet> Hold() const { return m_backend; }
    std::shared_ptr<CZrHbHttpGet> Take() { return std::exchange(m_backend, nullptr); }

private:
    std::shared_ptr<CZrHbHttpGet> m_backend;
};

class CZrHbUHttpGet_Impl {
public:
    explicit CZrHbUHttpGet_Impl(EZrAbAppGroup group) : eGroup(group) {}

    // The read clocks of a page that is opened now.
    void StartReadClocks();
    // The page has grown to nLength, or not.
    void NoteProgress(DWORD nLength);
    // Milliseconds without growth after which a read fails; 0 for none.
    DWORD EffectiveTimeout(DWORD dwTimeout, BOOL bLargeData) const;
    bool IsTimedOut(DWORD dwTimeout) const;
    // What the browser shows, or the URL last opened without a browser interface.
    CString Location();
    void Close();

    DWORD nSecurityWait = 1000; // ms
    bool isFirstPost = true;
    EZrAbAppGroup eGroup;
    OwnedBackend backend;
    CTime timeOfLastProgress;
    DWORD nLastLength = 0;
    CTime idleStart;
    CTimeSpan longestIdle;
    bool isIdle = false;
    bool isPageOpen = false;
    CString strLastUrl;
    BOOL bKeepPageOpen = 0;
    DWORD nPostLength = 0;
    bool isSaveFilePending = false;
    int nConnectedWith = 0; // no connection sets it
    int nInterfaceVariant = 0;
    ContentTypeSubstitution specialContentType;
    DWORD nConnectVersion = 0;
    DWORD nBaudForLargeData = 12000; // bits per second
    DWORD nOffsetForLargeDataSeconds = 30;
};
