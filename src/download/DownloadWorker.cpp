#include "download/DownloadWorker.h"

#include <utility>

#include <ZrHbInet.h>
#include <platform/CodePage.h>
#include <platform/Window.h>

#include "download/DownloadState.h"
#include "download/FileDownload.h"
#include "errors/LogRecord.h"
#include "siblings/ZrCbSystem.h"

namespace {

constexpr DWORD kLastWorkerPatience = 5000; // ms
constexpr DWORD kPause = 100;               // ms
constexpr int kPauses = 50;

bool IsShown(HWND window) {
    return IsWindow(window) && IsWindowVisible(window);
}

bool WaitUntilShown(HWND window) {
    for (int pause = 0; pause < kPauses; ++pause) {
        if (IsShown(window)) return true;
        CZrCbSystem::WaitTimeout(kPause, 1);
    }
    return false;
}

UINT FinalMessage(DownloadResult result, bool isFailureMessageWanted) {
    switch (result) {
    case DownloadResult::complete:
        return CZrHbInet::eMessage_Ended;
    case DownloadResult::stopped:
        return CZrHbInet::eMessage_Stopped;
    case DownloadResult::failed:
        break;
    }
    return isFailureMessageWanted ? CZrHbInet::eMessage_Failed : CZrHbInet::eMessage_Ended;
}

void Work(const DownloadRequest& request) {
    const DownloadResult result = FileDownload(request).InternetReadFileInSynchMode();
    if (!request.window || !WaitUntilShown(request.window)) return;
    SendMessageA(request.window, FinalMessage(result, request.isFailureMessageWanted), 0, 0);
}

CString WaitText(DWORD result) {
    if (result == WAIT_TIMEOUT) return "WAIT_TIMEOUT";
    if (result == WAIT_ABANDONED) return "WAIT_ABANDONED";
    CString text;
    text.Format("WAIT_FAILED (%u)", result);
    return text;
}

void WaitForLastWorker(const DownloadRequest& request) {
    DownloadState& state = DownloadState::Get();
    const auto last = state.LastWorker();
    if (!last) return;
    const DWORD result = last->Wait(kLastWorkerPatience);
    if (result == WAIT_OBJECT_0) return state.ForgetLastWorker(last);
    ZRHB_FAILURE(WaitText(result) + " by attempt to download file " + request.url, request.group);
}

} // namespace

bool StartDownloadWorker(const DownloadRequest& request) {
    WaitForLastWorker(request);
    if (request.url.IsEmpty()) return false;
    const std::u16string url = platform::WideFromAnsi(request.url.View());
    if (IsValidURL(nullptr, url.c_str(), 0) != S_OK) return false;
    auto worker = platform::Current<platform::WorkerThreads>().Start([request] { Work(request); });
    if (!worker) return false;
    DownloadState::Get().SetLastWorker(std::move(worker));
    return true;
}
