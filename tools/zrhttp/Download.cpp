#include "zrhttp/Download.h"

#include <cerrno>
#include <cstring>
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
#include <sys/stat.h>
#include <unistd.h>

#include "zrhttp/CharacterSets.h"
#include "zrhttp/Errors.h"
#include "zrhttp/Interrupt.h"
#include "zrhttp/TransferProgress.h"

namespace zrhttp {
namespace {

constexpr auto kLook = std::chrono::milliseconds(100);
constexpr const char* kWindowClass = "zrhttp download";

// A file beside the target, which takes the target's name when it is complete and is removed
// otherwise. A device is written to as it is, and what a link leads to is the target.
class PartialFile {
public:
    explicit PartialFile(const std::string& target) : m_target(Resolved(target)) {
        const auto type = std::filesystem::status(m_target).type();
        if (type == std::filesystem::file_type::directory) Fail(EISDIR);
        if (type == std::filesystem::file_type::character) {
            m_name = m_target;
            return;
        }
        if (std::filesystem::exists(m_target) && type != std::filesystem::file_type::regular)
            throw SystemError("cannot write '" + m_target + "': not a file");
        m_name = m_target + ".part-XXXXXX";
        const int descriptor = mkstemp(m_name.data());
        if (descriptor < 0) Fail(errno);
        const mode_t mask = umask(0);
        umask(mask);
        fchmod(descriptor, 0666 & ~mask);
        close(descriptor);
    }
    ~PartialFile() {
        if (!m_name.empty() && m_name != m_target) unlink(m_name.c_str());
    }
    PartialFile(const PartialFile&) = delete;
    PartialFile& operator=(const PartialFile&) = delete;

    const std::string& Name() const { return m_name; }
    std::uint64_t Length() const {
        std::error_code error;
        const auto length = std::filesystem::file_size(m_name, error);
        return error ? 0 : length;
    }
    void Complete() {
        if (m_name != m_target && rename(m_name.c_str(), m_target.c_str()) != 0) Fail(errno);
        m_name.clear();
    }

private:
    static std::string Resolved(const std::string& target) {
        if (target.empty()) throw UsageError("FILE: is empty");
        std::error_code error;
        const auto resolved = std::filesystem::canonical(target, error);
        return error ? target : resolved.string();
    }
    [[noreturn]] void Fail(int error) const {
        throw SystemError("cannot write '" + m_target + "': " + std::strerror(error));
    }

    std::string m_target;
    std::string m_name;
};

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
DownloadEnd DownloadHere(CZrHbInet& inet, const CString& url, const PartialFile& file,
                         TransferProgress& progress) {
    std::promise<void> over;
    std::thread watcher([&, hasEnded = over.get_future()] {
        while (hasEnded.wait_for(kLook) == std::future_status::timeout) {
            if (Interrupt::IsRequested()) inet.StopDownloadFile();
            progress.Update(file.Length(), std::nullopt);
        }
    });
    const int isComplete = inet.DownloadFile(url, CString(std::string_view(file.Name())));
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

DownloadEnd DownloadInBackground(CZrHbInet& inet, const CString& url, const PartialFile& file,
                                 TransferProgress& progress) {
    const NotificationWindow window;
    if (!inet.StartDownloadFile2(eAppGroup_2, url, CString(std::string_view(file.Name())),
                                 window.Object()))
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

} // namespace

DownloadResult Download(const DownloadOptions& options) {
    const CString url = AnsiFromArgument("URL", options.url);
    if (!IsDownloadable(url))
        throw UsageError("URL: cannot be downloaded; give the whole of it, with http:// or "
                         "https:// and without spaces");
    PartialFile file(options.file);
    const Interrupt interrupt;
    const auto begin = std::chrono::steady_clock::now();
    DownloadResult result;
    {
        TransferProgress progress;
        const PromptBesideProgress prompt(progress);
        CZrHbInet inet;
        result.end = options.background ? DownloadInBackground(inet, url, file, progress)
                                        : DownloadHere(inet, url, file, progress);
    }
    result.length = file.Length();
    result.elapsed = std::chrono::duration_cast<std::chrono::milliseconds>(
        std::chrono::steady_clock::now() - begin);
    if (result.end == DownloadEnd::complete) file.Complete();
    return result;
}

} // namespace zrhttp
