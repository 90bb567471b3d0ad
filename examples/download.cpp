// Downloads a file on the library's worker thread, which tells a window of ours how far it is.
//
// usage: download URL FILE
#include <cstdio>

#include <ZrHbInet.h>
#include <platform/CWnd.h>
#include <platform/Messages.h>
#include <platform/Thread.h>
#include <platform/Window.h>

namespace {

bool isOver = false;
bool isComplete = false;

LRESULT OnMessage(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
    case CZrHbInet::eMessage_Progress:
        std::fprintf(stderr, "%d %%\n", static_cast<int>(lParam));
        return 0;
    case CZrHbInet::eMessage_Ended:
        isComplete = true;
        [[fallthrough]];
    case CZrHbInet::eMessage_Stopped:
    case CZrHbInet::eMessage_Failed:
        isOver = true;
        return 0;
    default:
        return DefWindowProcA(window, message, wParam, lParam);
    }
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 3) return std::fprintf(stderr, "usage: download URL FILE\n"), 2;
    AfxRegisterWindowClass("download example", OnMessage);
    const HWND window = CreateWindowExA(0, "download example", "", WS_VISIBLE, 0, 0, 0, 0, nullptr,
                                        nullptr, nullptr, nullptr);
    CZrHbInet inet;
    if (!inet.StartDownloadFile2(eAppGroup_2, argv[1], argv[2], CWnd::FromHandle(window)))
        return std::fprintf(stderr, "download: not a valid URL\n"), 2;
    while (!isOver) { // the worker waits for each of its messages to be handled
        MSG message;
        MsgWaitForMultipleObjects(0, nullptr, FALSE, INFINITE, QS_ALLINPUT);
        while (PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE))
            DispatchMessageA(&message);
    }
    DestroyWindow(window);
    if (isComplete) return 0;
    const CString reasons = CZrHbInet::GetReasonForCommunicationError(
        eAppGroup_2, CZrHbInet::eErrorServerResponse_NoResponse);
    return std::fprintf(stderr, "%s\n", reasons.GetString()), 1;
}
