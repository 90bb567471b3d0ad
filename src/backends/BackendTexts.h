// Error texts that the back-ends share.
#pragma once

#include <ZrHbResultCodes.h>
#include <platform/String.h>

namespace BackendTexts {

constexpr const char* kOpenNotConnected = "Open failed because: not connected.";
constexpr const char* kOpenConnectionLost = "Open failed because: Connection got lost.";
constexpr const char* kReadConnectionLost = "Read failed because: Connection got lost.";
constexpr const char* kReadNotConnected =
    "Read: No previous Connect() and Open() or already Disconnected.";
constexpr const char* kInterfaceNotConnected =
    "Get_IWebBrowser2_ptr failed because: not connected.";
constexpr const char* kCannotNavigate = "Internal error: cannot navigate(!?)";
constexpr const char* kNotCompleted = "Read has not completed yet.";
constexpr const char* kLoadedIdle = "Loading done - now idle.";
constexpr const char* kReadInNewWindow =
    "Reading failed (because after OpenInNewWindow() you cannot read the page).";
constexpr const char* kReadyStateFailed = "Read failed (code 2).";
constexpr const char* kBusyFailed = "Read failed (code 3).";
constexpr const char* kInternalError = "Internal error: ...";
constexpr const char* kOffline = "Reading failed because browser is offline.";
constexpr const char* kNoDocument = "Reading failed. (GetDocument failed.)";

} // namespace BackendTexts

inline DWORD OpenNotConnected(CString& strErr) {
    strErr = BackendTexts::kOpenNotConnected;
    return ZRHB_OPEN_NOT_CONNECTED;
}
