#include "download/FileDownload.h"

#include <cstdint>
#include <cstdlib>
#include <string>

#include <ZrHbErrorHandling.h>
#include <ZrHbInet.h>
#include <platform/LastError.h>
#include <platform/Resources.h>
#include <platform/Window.h>

#include "download/DownloadState.h"
#include "download/TargetFile.h"
#include "errors/LogRecord.h"

namespace {

constexpr DWORD kOpenFlags =
    INTERNET_FLAG_RELOAD | INTERNET_FLAG_NO_CACHE_WRITE | INTERNET_FLAG_KEEP_CONNECTION;
constexpr DWORD kDialogFlags = FLAGS_ERROR_UI_FILTER_FOR_ERRORS |
                               FLAGS_ERROR_UI_FLAGS_CHANGE_OPTIONS |
                               FLAGS_ERROR_UI_FLAGS_GENERATE_DATA;
constexpr DWORD kPiece = 1024;    // bytes read at a time
constexpr DWORD kDrainPiece = 50; // bytes
constexpr DWORD kInfoSize = 1024; // bytes
constexpr long kOk = 200;
constexpr long kUnauthorized = 401;
constexpr long kProxyAuthenticationRequired = 407;

bool IsStopRequested() {
    return DownloadState::Get().IsStopRequested();
}

CString Number(long long value) {
    return CString(std::to_string(value));
}

// What the internet API says about the reply that did not come; empty when it says nothing.
CString LastResponseText() {
    DWORD error = 0;
    char text[kInfoSize] = "";
    DWORD length = kInfoSize - 1;
    if (!InternetGetLastResponseInfoA(&error, text, &length)) return CString();
    return "\nInternetGetLastResponseInfo(): Error = " + Number(error) + ", Text = \"" + text +
           "\"";
}

DWORD ContentLength(HINTERNET reply) {
    DWORD length = 0;
    DWORD size = sizeof length;
    const BOOL isKnown = HttpQueryInfoA(reply, HTTP_QUERY_CONTENT_LENGTH | HTTP_QUERY_FLAG_NUMBER,
                                        &length, &size, nullptr);
    return isKnown ? length : 0;
}

// Tells a window how much of a known length has come, whenever the whole per cent grows.
class ProgressReport {
public:
    ProgressReport(HWND window, DWORD length) : m_window(window), m_length(length) {}

    void Advance(std::uint64_t total) {
        if (!m_window || m_length == 0 || total >= m_length) return;
        if (PerCent(total) <= m_last) return;
        m_last = PerCent(total);
        Send(m_last);
    }
    void Finish(std::uint64_t total) const {
        if (m_window && m_length != 0) Send(PerCent(total));
    }

private:
    std::uint64_t PerCent(std::uint64_t total) const { return total * 100 / m_length; }
    void Send(std::uint64_t perCent) const {
        SendMessageA(m_window, CZrHbInet::eMessage_Progress, 0, static_cast<LPARAM>(perCent));
    }

    HWND m_window;
    DWORD m_length;
    std::uint64_t m_last = 0;
};

} // namespace

DownloadResult FileDownload::InternetReadFileInSynchMode() {
    ZRHB_TRACE("InternetReadFileInSynchMode(" + m_request.url + ", " + m_request.file + ")",
               m_request.group);
    const platform::ScopedInternetStop stop(DownloadState::Get().StopWord());
    if (!AssureBrowserIsOnline() || !ConnectToInternet()) return DownloadResult::failed;
    return ReadFileFromInternet();
}

bool FileDownload::AssureBrowserIsOnline() const {
    ZRHB_TRACE("AssureBrowserIsOnline(" + m_request.url + ")", m_request.group);
    DWORD flags = 0;
    InternetGetConnectedState(&flags, 0);
    if (flags & INTERNET_CONNECTION_OFFLINE) {
        ZRHB_TRACE("InternetGetConnectedState(INTERNET_CONNECTION_OFFLINE)", m_request.group);
        InternetGoOnline(m_request.url, nullptr, 0);
    }
    if (!InternetGetConnectedState(&flags, 0)) {
        ZRHB_TRACE("InternetGetConnectedState() returned FALSE", m_request.group);
        InternetGoOnline(m_request.url, nullptr, 0);
    }
    return !IsStopRequested();
}

bool FileDownload::ConnectToInternet() {
    ZRHB_TRACE("ConnectToInternet(" + m_request.url + ")", m_request.group);
    m_connection.reset(InternetOpenA(AfxGetModuleState()->m_strCurrentAppName,
                                     INTERNET_OPEN_TYPE_PRECONFIG, nullptr, nullptr, 0));
    if (!m_connection) {
        ZRHB_FAILURE("InternetOpen() -> Failed to open WinInet", m_request.group);
        return false;
    }
    if (IsStopRequested()) return false;
    for (;;) {
        long status = 0;
        if (!OpenUrl() || !QueryStatus(status)) return false;
        const bool wantsCredentials =
            status == kUnauthorized || status == kProxyAuthenticationRequired;
        if (wantsCredentials && AskForCredentials()) continue;
        if (!wantsCredentials && status != kOk) {
            ZRHB_FAILURE("Failed to retrieve a HTTP 200 status, Status Code:" + Number(status) +
                             "\n",
                         m_request.group);
        }
        return !IsStopRequested();
    }
}

// Any reply before is let go first.
bool FileDownload::OpenUrl() {
    m_reply.reset();
    m_reply.reset(InternetOpenUrlA(m_connection.get(), m_request.url, nullptr, 0, kOpenFlags, 0));
    if (m_reply) return true;
    const DWORD error = GetLastError();
    ZRHB_FAILURE("InternetOpenUrl() -> Failed to open WinInet with error " + Number(error) +
                     LastResponseText(),
                 m_request.group);
    m_connection.reset();
    return false;
}

bool FileDownload::QueryStatus(long& status) const {
    char text[32] = "";
    DWORD size = sizeof text;
    if (HttpQueryInfoA(m_reply.get(), HTTP_QUERY_STATUS_CODE, text, &size, nullptr)) {
        status = std::atol(text);
        return true;
    }
    ZRHB_FAILURE("Failed in call to HttpQueryInfo for HTTP query status code, Error:" +
                     Number(GetLastError()) + "\n",
                 m_request.group);
    return false;
}

// True when there are some to try.
bool FileDownload::AskForCredentials() const {
    char piece[kDrainPiece];
    DWORD count = 0;
    while (InternetReadFile(m_reply.get(), piece, kDrainPiece, &count) && count > 0) {
    }
    const HWND parent = m_request.window ? m_request.window : GetActiveWindow();
    return InternetErrorDlg(parent, m_reply.get(), ERROR_INTERNET_INCORRECT_PASSWORD, kDialogFlags,
                            nullptr) == ERROR_INTERNET_FORCE_RETRY;
}

// The result goes by the length; that the reply is not whole is told here.
void FileDownload::TellBrokenRead() const {
    const DWORD error = GetLastError();
    if (IsStopRequested()) return;
    ZRHB_FAILURE("InternetReadFile() -> Failed to read the reply with error " + Number(error) +
                     LastResponseText(),
                 m_request.group);
}

DownloadResult FileDownload::ReadFileFromInternet() const {
    ZRHB_TRACE("ReadFileFromInternet(" + m_request.url + ")", m_request.group);
    TargetFile file;
    const auto failToWrite = [&] {
        ZRHB_FAILURE("Attempt to write file " + m_request.file + " failed with error " +
                         file.Error(),
                     m_request.group);
        return DownloadResult::failed;
    };
    if (!file.Open(m_request.file)) {
        ZRHB_FAILURE("Attempt to open file " + m_request.file + " with with error " +
                         file.Error().Left(kInfoSize),
                     m_request.group);
        return DownloadResult::failed;
    }
    if (IsStopRequested()) return DownloadResult::stopped;

    const DWORD length = ContentLength(m_reply.get());
    ProgressReport progress(m_request.window, length);
    std::uint64_t total = 0;
    DWORD count = 0;
    for (;;) {
        char* const piece = file.Room(kPiece);
        if (!piece) return failToWrite();
        if (!InternetReadFile(m_reply.get(), piece, kPiece, &count)) {
            TellBrokenRead();
            break;
        }
        if (count == 0) break;
        if (IsStopRequested()) return DownloadResult::stopped;
        total += count;
        progress.Advance(total);
        file.Keep(count);
        // After a short piece the server may take its time.
        if (count < kPiece && !file.Flush()) return failToWrite();
    }
    if (IsStopRequested()) return DownloadResult::stopped;
    progress.Finish(total);
    if (!file.Close()) return failToWrite();
    if (IsStopRequested()) return DownloadResult::stopped;
    return total == length || length == 0 ? DownloadResult::complete : DownloadResult::failed;
}
