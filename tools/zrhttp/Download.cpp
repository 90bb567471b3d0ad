#include "zrhttp/Download.h"

#include <filesystem>
#include <future>
#include <optional>
#include <thread>

#include <ZrHbInet.h>
#include <platform/CodePage.h>
#include <platform/Internet.h>
#include <platform/Prompt.h>
#include <platform/Window.h>
#include <strings.h>

#include "zrhttp/CharacterSets.h"
#include "zrhttp/Errors.h"
#include "zrhttp/FailureRecords.h"
#include "zrhttp/HttpStatus.h"
#include "zrhttp/Interrupt.h"
#include "zrhttp/OutputFile.h"
#include "zrhttp/TransferProgress.h"
#include "zrhttp/TransferWatch.h"

namespace zrhttp {
namespace {

constexpr auto kLook = std::chrono::milliseconds(100);
constexpr const char* kWindowClass = "zrhttp download";

// Asks the user where the progress is shown otherwise.
class PromptBesideProgress final : public platform::Prompt {
public:
    explicit PromptBesideProgress(TransferProgress& progress) : m_progress(progress) {}

    int Ask(const CString& strText, UINT nType) override {
        const auto silence = m_progress.Silence();
        return Real().Ask(strText, nType);
    }
    bool AskCredentials(const CString& strText, CString& strName, CString& strPassword,
                        const std::function<bool()>& isWithdrawn) override {
        const auto silence = m_progress.Silence();
        return Real().AskCredentials(strText, strName, strPassword, isWithdrawn);
    }

private:
    TransferProgress& m_progress;
    const platform::ScopedService<platform::Prompt> m_installed{*this};
};

DownloadEnd EndOf(bool isComplete) {
    if (isComplete) return DownloadEnd::complete;
    return Interrupt::IsRequested() ? DownloadEnd::stopped : DownloadEnd::failed;
}

// Looks at the file, and for Ctrl-C, while the library's blocking call has this thread.
DownloadEnd DownloadHere(CZrHbInet& inet, const CString& url, const OutputFile& file,
                         TransferProgress& progress) {
    std::promise<void> over;
    std::thread watcher([&, hasEnded = over.get_future()] {
        while (hasEnded.wait_for(kLook) == std::future_status::timeout) {
            if (Interrupt::IsRequested()) inet.StopDownloadFile();
            progress.Update(file.Length(), std::nullopt);
        }
    });
    const int isComplete = inet.DownloadFile(url, CString(file.WorkingName()));
    over.set_value();
    watcher.join();
    return EndOf(isComplete != 0);
}

// What the worker's messages have told so far. The window that gets them is this thread's.
struct Notified {
    std::optional<int> percent;
    std::optional<DownloadEnd> end;
};
thread_local Notified t_notified;

LRESULT OnMessage(HWND hWnd, UINT nMessage, WPARAM wParam, LPARAM lParam) {
    switch (nMessage) {
    case CZrHbInet::eMessage_Progress:
        t_notified.percent = static_cast<int>(lParam);
        return 0;
    case CZrHbInet::eMessage_Stopped:
        t_notified.end = DownloadEnd::stopped;
        return 0;
    case CZrHbInet::eMessage_Ended:
        t_notified.end = DownloadEnd::complete;
        return 0;
    case CZrHbInet::eMessage_Failed:
        t_notified.end = EndOf(false);
        return 0;
    default:
        return DefWindowProcA(hWnd, nMessage, wParam, lParam);
    }
}

class NotificationWindow {
public:
    NotificationWindow() {
        t_notified = {};
        AfxRegisterWindowClass(kWindowClass, OnMessage);
        m_window = CreateWindowExA(0, kWindowClass, "", WS_VISIBLE, 0, 0, 0, 0, nullptr, nullptr,
                                   nullptr, nullptr);
        if (!m_window) throw SystemError("cannot make a window for the download");
    }
    ~NotificationWindow() { DestroyWindow(m_window); }
    NotificationWindow(const NotificationWindow&) = delete;
    NotificationWindow& operator=(const NotificationWindow&) = delete;

    CWnd* Object() const { return CWnd::FromHandle(m_window); }

private:
    HWND m_window = nullptr;
};

void ServeMessages() {
    MSG message;
    while (PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE)) {
        TranslateMessage(&message);
        DispatchMessageA(&message);
    }
    MsgWaitForMultipleObjects(0, nullptr, FALSE, static_cast<DWORD>(kLook.count()), QS_ALLINPUT);
}

DownloadEnd DownloadInBackground(CZrHbInet& inet, const CString& url, const OutputFile& file,
                                 TransferProgress& progress) {
    const NotificationWindow window;
    if (!inet.StartDownloadFile2(eAppGroup_2, url, CString(file.WorkingName()), window.Object()))
        throw SystemError("the download could not be started");
    while (!t_notified.end) {
        if (Interrupt::IsRequested()) inet.StopDownloadFile();
        ServeMessages();
        progress.Update(file.Length(), t_notified.percent);
    }
    return *t_notified.end;
}

bool IsDownloadable(const CString& url) {
    return (strncasecmp(url, "http://", 7) == 0 || strncasecmp(url, "https://", 8) == 0) &&
           IsValidURL(nullptr, platform::WideFromAnsi(url.View()).c_str(), 0) == S_OK;
}

// The library opens it by its name, and would wait for a pipe's reader.
void CheckTarget(const std::string& name) {
    using std::filesystem::file_type;
    if (name.empty()) throw UsageError("FILE: is empty");
    std::error_code unknown;
    const file_type type = std::filesystem::status(name, unknown).type();
    if (type == file_type::fifo || type == file_type::socket || type == file_type::block)
        throw SystemError("cannot write '" + name + "': not a file");
}

std::string Cause(const TransferFacts& facts) {
    if (facts.IsErrorPage() || facts.WantsCredentials()) {
        const char* who = facts.status == 407 ? "the proxy" : "the server";
        return HttpStatusText(*facts.status) +
               (facts.WantsCredentials() ? std::string(": ") + who + " wants credentials" : "");
    }
    if (facts.hasEnded && facts.length && *facts.length != facts.received)
        return "incomplete: " + std::to_string(facts.received) + " of " +
               std::to_string(*facts.length) + " bytes" +
               (facts.error == ERROR_INTERNET_TIMEOUT ? ", " + facts.reason : std::string());
    return facts.status ? facts.reason : std::string();
}

// The library knows the content by another name than the person.
std::vector<std::string> WithFileName(std::vector<std::string> lines, const std::string& name,
                                      const std::string& shown) {
    for (std::string& line : lines)
        if (const auto place = line.find(name); place != line.npos)
            line.replace(place, name.size(), shown);
    return lines;
}

// The library's result goes by the length; a reply that is not whole is no file here, and neither
// is an error page.
bool IsWanted(const TransferFacts& facts, bool keepErrorPage) {
    // What the reply to an unknown user holds has been read over by then.
    if (facts.error != 0 || facts.WantsCredentials()) return false;
    return keepErrorPage || !facts.IsErrorPage();
}

DownloadFailure FailureOf(const TransferFacts& facts, const FailureRecords& records,
                          const OutputFile& file, const std::string& name) {
    DownloadFailure failure;
    failure.cause = Cause(facts);
    failure.reason = failure.cause.empty() ? facts.reason : failure.cause;
    failure.records = WithFileName(records.Lines(), file.WorkingName(), name);
    failure.areRecordsInLog = records.AreInLog();
    failure.isErrorPage = facts.IsErrorPage();
    failure.isConnection = facts.IsConnectionFailure();
    return failure;
}

DownloadEnd Transfer(const DownloadOptions& options, const CString& url, const OutputFile& file) {
    TransferProgress progress;
    const PromptBesideProgress prompt(progress);
    CZrHbInet inet;
    return options.background ? DownloadInBackground(inet, url, file, progress)
                              : DownloadHere(inet, url, file, progress);
}

} // namespace

DownloadResult Download(const DownloadOptions& options) {
    const CString url = AnsiFromArgument("URL", options.url);
    if (!IsDownloadable(url))
        throw UsageError("URL: cannot be downloaded; give the whole of it, with http:// or "
                         "https:// and without spaces");
    CheckTarget(options.file);
    OutputFile file(options.file);
    const Interrupt interrupt;
    const auto begin = std::chrono::steady_clock::now();
    DWORD patience = options.timeout;
    InternetSetOptionA(nullptr, INTERNET_OPTION_RECEIVE_TIMEOUT, &patience, sizeof patience);
    const FailureRecords records;
    const TransferWatch transfer(options.keepErrorPage);
    DownloadResult result;
    result.end = Transfer(options, url, file);
    const TransferFacts& facts = transfer.Facts();
    if (result.end == DownloadEnd::complete && !IsWanted(facts, options.keepErrorPage))
        result.end = DownloadEnd::failed;
    result.httpStatus = facts.status;
    result.length = facts.received;
    result.elapsed = std::chrono::duration_cast<std::chrono::milliseconds>(
        std::chrono::steady_clock::now() - begin);
    if (result.end == DownloadEnd::failed)
        result.failure = FailureOf(facts, records, file, options.file);
    if (result.end == DownloadEnd::complete) file.Commit();
    return result;
}

} // namespace zrhttp
