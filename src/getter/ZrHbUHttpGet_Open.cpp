// The getter: opening and closing pages.

#include <ZrHbUHttpGet.h>

#include <cstring>

#include "getter/ZrHbUHttpGet_Impl.h"
#include "siblings/ZrCbSystem.h"

namespace {

constexpr const char* kFormContentType = "Content-Type: application/x-www-form-urlencoded";

// A server may take a second POST that follows at once for an attack, or a double click.
void WaitBeforePost(CZrHbUHttpGet_Impl& state) {
    if (std::exchange(state.isFirstPost, false)) return;
    if (state.nSecurityWait > 0) CZrCbSystem::WaitTimeout(state.nSecurityWait, 1);
}

DWORD NotConnected(CString& strErr) {
    strErr = "Open failed because: not connected.";
    return ZRHB_OPEN_NOT_CONNECTED;
}

DWORD RecordedPostLength(const void* pPostData, DWORD nPostLen) {
    if (nPostLen != ZRHB_LENGTH_OF_TEXT || !pPostData) return nPostLen;
    return static_cast<DWORD>(std::strlen(static_cast<const char*>(pPostData)));
}

void* DataOf(const CString& strPostData) {
    return const_cast<char*>(strPostData.GetString());
}

} // namespace

DWORD CZrHbUHttpGet::Open(const CString& strUrl, CString& strErr, BOOL bKeepPageOpen) {
    return Open(strUrl, strErr, nullptr, ZRHB_LENGTH_OF_TEXT, kFormContentType, bKeepPageOpen);
}

DWORD CZrHbUHttpGet::Open(const CString& strUrl, CString& strErr, const CString& strPostData,
                          const char* pszHeaders, BOOL bKeepPageOpen) {
    return Open(strUrl, strErr, DataOf(strPostData), ZRHB_LENGTH_OF_TEXT, pszHeaders,
                bKeepPageOpen);
}

DWORD CZrHbUHttpGet::Open(const CString& strUrl, CString& strErr, void* const pPostData,
                          DWORD nPostLen, const char* pszHeaders, BOOL bKeepPageOpen) {
    CZrHbUHttpGet_Impl* const state = GetImpl();
    if (!state) return ZRHB_OPEN_NOT_CONNECTED;
    if (!state->backend) return NotConnected(strErr);
    if (pPostData) WaitBeforePost(*state);
    const auto backend = state->backend.Hold();
    if (!backend) return NotConnected(strErr);
    state->StartReadClocks();
    state->strLastUrl = strUrl;
    state->bKeepPageOpen = bKeepPageOpen;
    state->nPostLength = RecordedPostLength(pPostData, nPostLen);
    if (state->isPageOpen) Close();

    const DWORD result =
        backend->Open(strUrl, strErr, pPostData, nPostLen, pszHeaders, bKeepPageOpen);
    if (result != ZRHB_OK) {
        Close();
        return result;
    }
    state->isPageOpen = true;
    state->isSaveFilePending = true;
    return ZRHB_OK;
}

void CZrHbUHttpGet::Close() {
    if (GetImpl()) GetImpl()->Close();
}

DWORD CZrHbUHttpGet::OpenInNewWindow(const CString& strUrl, CString& strErr) {
    return OpenInNewWindow(strUrl, strErr, nullptr, ZRHB_LENGTH_OF_TEXT, kFormContentType);
}

DWORD CZrHbUHttpGet::OpenInNewWindow(const CString& strUrl, CString& strErr,
                                     const CString& strPostData, const char* pszHeaders) {
    return OpenInNewWindow(strUrl, strErr, DataOf(strPostData), ZRHB_LENGTH_OF_TEXT, pszHeaders);
}

DWORD CZrHbUHttpGet::OpenInNewWindow(const CString& strUrl, CString& strErr, void* const pPostData,
                                     DWORD nPostLen, const char* pszHeaders) {
    if (!GetImpl()) return ZRHB_STOPPED;
    if (GetImpl()->backend) GetImpl()->backend->PrepareOpenInNewWindow();
    return Open(strUrl, strErr, pPostData, nPostLen, pszHeaders, FALSE);
}

void CZrHbUHttpGet::DoNextOpenForSpecialContentType(const CString& strContentType) {
    if (GetImpl()) GetImpl()->specialContentType.Substitute(strContentType);
}
