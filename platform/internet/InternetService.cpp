#include "internet/InternetService.h"

#include <cstring>
#include <limits>

#include <platform/CodePage.h>
#include <platform/LastError.h>
#include <platform/Prompt.h>

#include "internet/ConnectedState.h"
#include "internet/LastResponse.h"

namespace platform {
namespace {

BOOL FailWith(DWORD dwError) {
    SetLastError(dwError);
    return FALSE;
}

std::optional<InternetFailure> ParseRequestUrl(const CString& strUrl, PageUrl& url) {
    const std::string_view text = strUrl.View();
    const std::string scheme = SchemeOf(text);
    if (!scheme.empty() && !IsHttpUrl(text))
        return InternetFailure{ERROR_INTERNET_UNRECOGNIZED_SCHEME,
                               "the URL is neither http nor https"};
    if (scheme.empty() || text.find_first_of("/\\") != scheme.size() + 1)
        return InternetFailure{ERROR_INTERNET_INVALID_URL, "the URL is not absolute"};
    InternetFailure failure{ERROR_INTERNET_INVALID_URL, {}};
    auto parsed = ParsePageUrl(WideFromAnsi(text), failure.text);
    if (!parsed) return failure;
    url = std::move(*parsed);
    return std::nullopt;
}

BOOL WriteStatus(int status, void* pBuffer, DWORD* pLength) {
    const std::string digits = std::to_string(status);
    const DWORD room = *pLength;
    *pLength = static_cast<DWORD>(digits.size());
    if (room <= digits.size()) {
        *pLength += 1; // what is needed
        return FailWith(ERROR_INSUFFICIENT_BUFFER);
    }
    std::memcpy(pBuffer, digits.c_str(), digits.size() + 1);
    return TRUE;
}

BOOL WriteLength(std::optional<curl_off_t> length, void* pBuffer, DWORD* pLength) {
    if (!length || *length > std::numeric_limits<DWORD>::max())
        return FailWith(ERROR_HTTP_HEADER_NOT_FOUND);
    const DWORD room = *pLength;
    *pLength = sizeof(DWORD);
    if (room < sizeof(DWORD)) return FailWith(ERROR_INSUFFICIENT_BUFFER);
    const auto value = static_cast<DWORD>(*length);
    std::memcpy(pBuffer, &value, sizeof value);
    return TRUE;
}

CString TextOf(const PasswordQuestion& question) {
    std::string text = "The " + question.asker + " asks for a name and a password";
    if (!question.realm.empty()) text += " for \"" + question.realm + "\"";
    text += question.isRepeated ? ". Those that were sent were not accepted." : ".";
    return AnsiFromUtf8(text);
}

} // namespace

Internet& Internet::Real() {
    static InternetService& service = *std::make_unique<InternetService>().release();
    return service;
}

HINTERNET InternetService::Open(const CString& strAgent) {
    auto session = std::make_shared<InternetSession>(std::string(strAgent.View()));
    session->SetReceiveTimeout(std::chrono::milliseconds(m_receiveTimeout));
    return m_handles.Add(std::move(session));
}

HINTERNET InternetService::OpenUrl(HINTERNET hSession, const CString& strUrl) {
    const auto fail = [](InternetFailure failure) -> HINTERNET {
        SetLastError(failure.error);
        LastResponse() = std::move(failure);
        return nullptr;
    };
    LastResponse() = {};
    auto session = m_handles.Find<InternetSession>(hSession);
    if (!session) return fail({GetLastError(), "there is no such session"});
    PageUrl url;
    if (auto failure = ParseRequestUrl(strUrl, url)) return fail(std::move(*failure));
    if (!IsLoopbackUrl(url.url) && IsUserOffline())
        return fail({ERROR_INTERNET_DISCONNECTED, "the system is set offline"});
    auto request = std::make_shared<InternetRequest>(std::move(session));
    if (auto failure = request->Open(std::move(url))) return fail(std::move(*failure));
    return m_handles.Add(std::move(request));
}

BOOL InternetService::QueryInfo(HINTERNET hRequest, DWORD dwInfo, void* pBuffer, DWORD* pLength) {
    const auto request = m_handles.Find<InternetRequest>(hRequest);
    if (!request) return FALSE;
    if (pBuffer && pLength && dwInfo == HTTP_QUERY_STATUS_CODE)
        return WriteStatus(request->Status(), pBuffer, pLength);
    if (pBuffer && pLength && dwInfo == (HTTP_QUERY_CONTENT_LENGTH | HTTP_QUERY_FLAG_NUMBER))
        return WriteLength(request->ContentLength(), pBuffer, pLength);
    return FailWith(ERROR_INVALID_PARAMETER);
}

BOOL InternetService::Read(HINTERNET hRequest, void* pBuffer, DWORD nCount, DWORD* pRead) {
    const auto request = m_handles.Find<InternetRequest>(hRequest);
    if (!request) return FALSE;
    if (!pRead || (!pBuffer && nCount > 0)) return FailWith(ERROR_INVALID_PARAMETER);
    std::size_t count = 0;
    LastResponse() = request->Read(pBuffer, nCount, count).value_or(InternetFailure());
    *pRead = static_cast<DWORD>(count);
    return LastResponse().error == ERROR_SUCCESS ? TRUE : FailWith(LastResponse().error);
}

BOOL InternetService::SetOption(HINTERNET hInternet, DWORD dwOption, const void* pBuffer,
                                DWORD nLength) {
    if (dwOption != INTERNET_OPTION_RECEIVE_TIMEOUT) return FailWith(ERROR_INTERNET_INVALID_OPTION);
    if (!pBuffer || nLength != sizeof(DWORD)) return FailWith(ERROR_INTERNET_BAD_OPTION_LENGTH);
    DWORD time = 0;
    std::memcpy(&time, pBuffer, sizeof time);
    if (!hInternet) {
        m_receiveTimeout = time;
        return TRUE;
    }
    const auto session = m_handles.Find<InternetSession>(hInternet);
    if (session) session->SetReceiveTimeout(std::chrono::milliseconds(time));
    return session ? TRUE : FALSE;
}

BOOL InternetService::Close(HINTERNET hInternet) {
    const auto object = m_handles.Remove(hInternet);
    if (const auto* session = std::get_if<std::shared_ptr<InternetSession>>(&object))
        (*session)->Close();
    else if (const auto* request = std::get_if<std::shared_ptr<InternetRequest>>(&object))
        (*request)->Close();
    else
        return FailWith(ERROR_INVALID_HANDLE);
    return TRUE;
}

DWORD InternetService::ErrorDialog(HWND, HINTERNET hRequest, DWORD) {
    const auto request = m_handles.Find<InternetRequest>(hRequest);
    if (!request) return GetLastError();
    const auto question = request->Question();
    if (!question) return ERROR_SUCCESS;
    CString strName;
    CString strPassword;
    if (!Current<Prompt>().AskCredentials(TextOf(*question), strName, strPassword,
                                          [&] { return request->IsCancelled(); }))
        return ERROR_CANCELLED;
    request->Answer(*question, {Utf8FromAnsi(strName.View()), Utf8FromAnsi(strPassword.View())});
    return ERROR_INTERNET_FORCE_RETRY;
}

BOOL InternetService::GetConnectedState(DWORD* pFlags) {
    const bool isUp = IsNetworkUp();
    if (pFlags)
        *pFlags = (isUp ? INTERNET_CONNECTION_LAN : 0) |
                  (IsUserOffline() ? INTERNET_CONNECTION_OFFLINE : 0);
    return isUp;
}

BOOL InternetService::GoOnline(const CString& strUrl) {
    const bool isOnline = !IsUserOffline() || EndUserOffline();
    if (IsLoopbackUrl(std::string(strUrl.View())) || (isOnline && IsNetworkUp())) return TRUE;
    return FailWith(ERROR_INTERNET_DISCONNECTED);
}

} // namespace platform
