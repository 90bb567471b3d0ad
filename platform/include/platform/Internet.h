// Requests over HTTP and HTTPS that a caller reads piece by piece.
#pragma once

#include <atomic>
#include <cstdint>

#include "Export.h"
#include "Services.h"
#include "String.h"

ZRHB_EXPORT_BEGIN

using HINTERNET = void*;
using DWORD_PTR = std::uintptr_t;

constexpr DWORD INTERNET_OPEN_TYPE_PRECONFIG = 0;
constexpr DWORD INTERNET_FLAG_RELOAD = 0x80000000;
constexpr DWORD INTERNET_FLAG_NO_CACHE_WRITE = 0x04000000;
constexpr DWORD INTERNET_FLAG_KEEP_CONNECTION = 0x00400000;
constexpr DWORD INTERNET_OPTION_RECEIVE_TIMEOUT = 6;
constexpr DWORD HTTP_QUERY_CONTENT_LENGTH = 5;
constexpr DWORD HTTP_QUERY_STATUS_CODE = 19;
constexpr DWORD HTTP_QUERY_FLAG_NUMBER = 0x20000000;
constexpr DWORD INTERNET_CONNECTION_LAN = 0x02;
constexpr DWORD INTERNET_CONNECTION_OFFLINE = 0x20;
constexpr DWORD FLAGS_ERROR_UI_FILTER_FOR_ERRORS = 0x01;
constexpr DWORD FLAGS_ERROR_UI_FLAGS_CHANGE_OPTIONS = 0x02;
constexpr DWORD FLAGS_ERROR_UI_FLAGS_GENERATE_DATA = 0x04;

constexpr DWORD ERROR_INSUFFICIENT_BUFFER = 122;
constexpr DWORD ERROR_CANCELLED = 1223;
constexpr DWORD ERROR_INTERNET_TIMEOUT = 12002;
constexpr DWORD ERROR_INTERNET_INVALID_URL = 12005;
constexpr DWORD ERROR_INTERNET_UNRECOGNIZED_SCHEME = 12006;
constexpr DWORD ERROR_INTERNET_NAME_NOT_RESOLVED = 12007;
constexpr DWORD ERROR_INTERNET_INVALID_OPTION = 12009;
constexpr DWORD ERROR_INTERNET_BAD_OPTION_LENGTH = 12010;
constexpr DWORD ERROR_INTERNET_INCORRECT_PASSWORD = 12014;
constexpr DWORD ERROR_INTERNET_OPERATION_CANCELLED = 12017;
constexpr DWORD ERROR_INTERNET_INCORRECT_HANDLE_TYPE = 12018;
constexpr DWORD ERROR_INTERNET_CANNOT_CONNECT = 12029;
constexpr DWORD ERROR_INTERNET_CONNECTION_ABORTED = 12030;
constexpr DWORD ERROR_INTERNET_FORCE_RETRY = 12032;
constexpr DWORD ERROR_INTERNET_SEC_CERT_DATE_INVALID = 12037;
constexpr DWORD ERROR_INTERNET_SEC_CERT_CN_INVALID = 12038;
constexpr DWORD ERROR_INTERNET_INVALID_CA = 12045;
constexpr DWORD ERROR_HTTP_HEADER_NOT_FOUND = 12150;
constexpr DWORD ERROR_HTTP_INVALID_SERVER_RESPONSE = 12152;
constexpr DWORD ERROR_HTTP_REDIRECT_FAILED = 12156;
constexpr DWORD ERROR_INTERNET_DISCONNECTED = 12163;

namespace platform {

// What the functions below forward to. Handles may be used on any thread, one call at a time;
// closing one ends a call that waits on it, within 250 ms, with
// ERROR_INTERNET_OPERATION_CANCELLED.
class Internet {
public:
    virtual ~Internet() = default;
    static Internet& Real();

    virtual HINTERNET Open(const CString& strAgent) = 0;
    virtual HINTERNET OpenUrl(HINTERNET hSession, const CString& strUrl) = 0;
    virtual BOOL QueryInfo(HINTERNET hRequest, DWORD dwInfo, void* pBuffer, DWORD* pLength) = 0;
    virtual BOOL Read(HINTERNET hRequest, void* pBuffer, DWORD nCount, DWORD* pRead) = 0;
    virtual BOOL Close(HINTERNET hInternet) = 0;
    virtual DWORD ErrorDialog(HWND hWndParent, HINTERNET hRequest, DWORD dwError) = 0;
    virtual BOOL GetConnectedState(DWORD* pFlags) = 0;
    virtual BOOL GoOnline(const CString& strUrl) = 0;
    virtual BOOL SetOption(HINTERNET hInternet, DWORD dwOption, const void* pBuffer,
                           DWORD nLength) = 0;
};

// While it lives, a wait of this thread inside the functions below ends within 250 ms after the
// word has become other than 0, with ERROR_INTERNET_OPERATION_CANCELLED.
class ScopedInternetStop {
public:
    explicit ScopedInternetStop(const std::atomic<int>& word);
    ~ScopedInternetStop();
    ScopedInternetStop(const ScopedInternetStop&) = delete;
    ScopedInternetStop& operator=(const ScopedInternetStop&) = delete;

    // The word of the calling thread, or null.
    static const std::atomic<int>* Current();

private:
    const std::atomic<int>* m_previous;
};

} // namespace platform

// Failures leave their number with SetLastError.

// A session: the agent's name for the user-agent field, connections and credentials. nAccessType:
// INTERNET_OPEN_TYPE_PRECONFIG (proxies from the environment); both further texts null; no flags.
HINTERNET InternetOpenA(const char* pszAgent, DWORD nAccessType, const char* pszProxy,
                        const char* pszProxyBypass, DWORD dwFlags);
// Sends a GET and returns when the head of the final reply is there, redirects followed. Null when
// there is no reply. No further headers. Nothing is cached.
HINTERNET InternetOpenUrlA(HINTERNET hSession, const char* pszUrl, const char* pszHeaders,
                           DWORD nHeadersLength, DWORD dwFlags, DWORD_PTR dwContext);
// HTTP_QUERY_STATUS_CODE: the digits as a text with NUL; *pLength: room in bytes, then the text's
// length. HTTP_QUERY_CONTENT_LENGTH | HTTP_QUERY_FLAG_NUMBER: a DWORD; FALSE with
// ERROR_HTTP_HEADER_NOT_FOUND when the reply does not say it, or it is not that of the bytes that
// are read (a decoded content coding) or not below 2^32. pIndex is null.
BOOL HttpQueryInfoA(HINTERNET hRequest, DWORD dwInfoLevel, void* pBuffer, DWORD* pLength,
                    DWORD* pIndex);
// The next bytes of the body, up to nCount; waits for the first of them. *pRead 0 with TRUE: the
// end. FALSE when the reply is not whole, or no bytes of it come in time;
// InternetGetLastResponseInfoA says why.
BOOL InternetReadFile(HINTERNET hRequest, void* pBuffer, DWORD nCount, DWORD* pRead);
// INTERNET_OPTION_RECEIVE_TIMEOUT, a DWORD: for how many milliseconds a session waits for the head
// of a reply, and for each next byte of its body; then the call fails with ERROR_INTERNET_TIMEOUT.
// What is no byte of the body, lines of a head or marks between chunks, does not prolong it. 0: for
// ever, as it is from the beginning. Without a handle it holds for all sessions opened afterwards.
BOOL InternetSetOptionA(HINTERNET hInternet, DWORD dwOption, void* pBuffer, DWORD nLength);
// TRUE once for a handle.
BOOL InternetCloseHandle(HINTERNET hInternet);
// Asks the user, through the prompt service, for name and password for what the request's reply
// wants (401 the server, 407 the proxy). ERROR_INTERNET_FORCE_RETRY when there are some to try,
// which the session keeps for that origin or proxy; ERROR_CANCELLED when the user gives none;
// ERROR_SUCCESS when the reply wants none. dwError, dwFlags: as the client gives them. ppData null.
DWORD InternetErrorDlg(HWND hWndParent, HINTERNET hRequest, DWORD dwError, DWORD dwFlags,
                       void** ppData);
// Why the calling thread's last InternetOpenUrlA or InternetReadFile failed, in plain words; empty
// when it did not. *pLength: room in bytes,
// then the text's length. FALSE with ERROR_INSUFFICIENT_BUFFER when it is too small.
BOOL InternetGetLastResponseInfoA(DWORD* pError, char* pBuffer, DWORD* pLength);
// Whether an interface other than loopback is up. *pFlags gets INTERNET_CONNECTION_LAN, and
// INTERNET_CONNECTION_OFFLINE when the user has set the system offline (registry value
// "GlobalUserOffline").
BOOL InternetGetConnectedState(DWORD* pFlags, DWORD nReserved);
// Takes the system out of the offline state; TRUE when the URL can be tried afterwards (a loopback
// URL always can).
BOOL InternetGoOnline(const char* pszUrl, HWND hWndParent, DWORD dwFlags);

// S_OK when the URL is absolute, well-formed (RFC 3986) and of a known scheme, else S_FALSE.
// pContext is null, nReserved 0.
HRESULT IsValidURL(void* pContext, const char16_t* pszUrl, DWORD nReserved);

ZRHB_EXPORT_END
