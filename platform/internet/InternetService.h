// The internet service over the transfer library.
#pragma once

#include <platform/Internet.h>

#include "internet/InternetHandles.h"

namespace platform {

// Closing a session ends what waits in its requests; their handles are still to be closed.
class InternetService : public Internet {
public:
    HINTERNET Open(const CString& strAgent) override;
    HINTERNET OpenUrl(HINTERNET hSession, const CString& strUrl) override;
    BOOL QueryInfo(HINTERNET hRequest, DWORD dwInfo, void* pBuffer, DWORD* pLength) override;
    BOOL Read(HINTERNET hRequest, void* pBuffer, DWORD nCount, DWORD* pRead) override;
    BOOL Close(HINTERNET hInternet) override;
    DWORD ErrorDialog(HWND hWndParent, HINTERNET hRequest, DWORD dwError) override;
    BOOL GetConnectedState(DWORD* pFlags) override;
    BOOL GoOnline(const CString& strUrl) override;
    BOOL SetOption(HINTERNET hInternet, DWORD dwOption, const void* pBuffer,
                   DWORD nLength) override;

private:
    InternetHandles m_handles;
    std::atomic<DWORD> m_receiveTimeout{0}; // of sessions to come, ms
};

} // namespace platform
