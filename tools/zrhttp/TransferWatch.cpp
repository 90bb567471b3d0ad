#include "zrhttp/TransferWatch.h"

#include <cstdlib>

#include <platform/CodePage.h>
#include <platform/LastError.h>

#include "zrhttp/HttpStatus.h"

namespace zrhttp {

bool TransferFacts::IsErrorPage() const {
    return status && *status >= kFirstErrorStatus;
}

bool TransferFacts::WantsCredentials() const {
    return status == 401 || status == 407;
}

bool TransferFacts::IsConnectionFailure() const {
    switch (error) {
    case ERROR_INTERNET_TIMEOUT:
    case ERROR_INTERNET_NAME_NOT_RESOLVED:
    case ERROR_INTERNET_CANNOT_CONNECT:
    case ERROR_INTERNET_CONNECTION_ABORTED:
    case ERROR_INTERNET_DISCONNECTED:
        return !status;
    default:
        return false;
    }
}

HINTERNET TransferWatch::Open(const CString& strAgent) {
    return m_real.Open(strAgent);
}

HINTERNET TransferWatch::OpenUrl(HINTERNET hSession, const CString& strUrl) {
    m_facts = {};
    const HINTERNET request = m_real.OpenUrl(hSession, strUrl);
    if (request)
        TakeHead(request);
    else
        TakeFailure();
    return request;
}

void TransferWatch::TakeHead(HINTERNET hRequest) {
    char digits[16] = "";
    DWORD room = sizeof digits;
    if (m_real.QueryInfo(hRequest, HTTP_QUERY_STATUS_CODE, digits, &room))
        m_facts.status = std::atoi(digits);
    DWORD length = 0;
    room = sizeof length;
    if (m_real.QueryInfo(hRequest, HTTP_QUERY_CONTENT_LENGTH | HTTP_QUERY_FLAG_NUMBER, &length,
                         &room))
        m_facts.length = length;
}

void TransferWatch::TakeFailure() {
    const DWORD error = GetLastError();
    char text[1024] = "";
    DWORD length = sizeof text;
    DWORD ignored = 0;
    if (InternetGetLastResponseInfoA(&ignored, text, &length))
        m_facts.reason = platform::Utf8FromAnsi(text);
    m_facts.error = error;
    SetLastError(error);
}

BOOL TransferWatch::QueryInfo(HINTERNET hRequest, DWORD dwInfo, void* pBuffer, DWORD* pLength) {
    return m_real.QueryInfo(hRequest, dwInfo, pBuffer, pLength);
}

BOOL TransferWatch::Read(HINTERNET hRequest, void* pBuffer, DWORD nCount, DWORD* pRead) {
    if (m_facts.IsErrorPage() && !m_isErrorPageWanted) {
        *pRead = 0;
        return TRUE;
    }
    const BOOL isRead = m_real.Read(hRequest, pBuffer, nCount, pRead);
    if (!isRead) TakeFailure();
    m_facts.hasEnded = !isRead || *pRead == 0;
    if (isRead) m_facts.received += *pRead;
    return isRead;
}

BOOL TransferWatch::Close(HINTERNET hInternet) {
    return m_real.Close(hInternet);
}

DWORD TransferWatch::ErrorDialog(HWND hWndParent, HINTERNET hRequest, DWORD dwError) {
    return m_real.ErrorDialog(hWndParent, hRequest, dwError);
}

BOOL TransferWatch::GetConnectedState(DWORD* pFlags) {
    return m_real.GetConnectedState(pFlags);
}

BOOL TransferWatch::GoOnline(const CString& strUrl) {
    return m_real.GoOnline(strUrl);
}

BOOL TransferWatch::SetOption(HINTERNET hInternet, DWORD dwOption, const void* pBuffer,
                              DWORD nLength) {
    return m_real.SetOption(hInternet, dwOption, pBuffer, nLength);
}

} // namespace zrhttp
