#include <cstring>

#include <platform/Internet.h>
#include <platform/LastError.h>

#include "internet/LastResponse.h"

namespace {

platform::Internet& Service() {
    return platform::Current<platform::Internet>();
}

} // namespace

HINTERNET InternetOpenA(const char* pszAgent, DWORD, const char*, const char*, DWORD) {
    return Service().Open(pszAgent);
}

HINTERNET InternetOpenUrlA(HINTERNET hSession, const char* pszUrl, const char*, DWORD, DWORD,
                           DWORD_PTR) {
    platform::LastResponse() = {}; // of an earlier attempt
    return Service().OpenUrl(hSession, pszUrl);
}

BOOL HttpQueryInfoA(HINTERNET hRequest, DWORD dwInfoLevel, void* pBuffer, DWORD* pLength, DWORD*) {
    return Service().QueryInfo(hRequest, dwInfoLevel, pBuffer, pLength);
}

BOOL InternetReadFile(HINTERNET hRequest, void* pBuffer, DWORD nCount, DWORD* pRead) {
    return Service().Read(hRequest, pBuffer, nCount, pRead);
}

BOOL InternetSetOptionA(HINTERNET hInternet, DWORD dwOption, void* pBuffer, DWORD nLength) {
    return Service().SetOption(hInternet, dwOption, pBuffer, nLength);
}

BOOL InternetCloseHandle(HINTERNET hInternet) {
    return Service().Close(hInternet);
}

DWORD InternetErrorDlg(HWND hWndParent, HINTERNET hRequest, DWORD dwError, DWORD, void**) {
    return Service().ErrorDialog(hWndParent, hRequest, dwError);
}

BOOL InternetGetLastResponseInfoA(DWORD* pError, char* pBuffer, DWORD* pLength) {
    if (!pError || !pLength || (!pBuffer && *pLength > 0)) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return FALSE;
    }
    const platform::InternetFailure& response = platform::LastResponse();
    const DWORD room = *pLength;
    *pError = response.error;
    *pLength = static_cast<DWORD>(response.text.size());
    if (room <= response.text.size()) {
        *pLength += 1; // what is needed
        SetLastError(ERROR_INSUFFICIENT_BUFFER);
        return FALSE;
    }
    std::memcpy(pBuffer, response.text.c_str(), response.text.size() + 1);
    return TRUE;
}

BOOL InternetGetConnectedState(DWORD* pFlags, DWORD) {
    return Service().GetConnectedState(pFlags);
}

BOOL InternetGoOnline(const char* pszUrl, HWND, DWORD) {
    return Service().GoOnline(pszUrl);
}
