// What an event sink of a browser sees.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include <platform/Browser.h>

namespace platform_test {

// The source of a document; fails the test when it cannot be read.
std::string SourceOf(IDispatch* document);

// Records events as "before /path", "navigated /path", "complete /path" (frames: "frame before
// /path"), "new window", "visible 1", "quit"; of URLs only the path.
class BrowserSink final : public ComObject<IDispatch> {
public:
    HRESULT Invoke(DISPID event, REFIID reserved, LCID locale, WORD flags, DISPPARAMS* pParams,
                   VARIANT* pResult, EXCEPINFO* pExceptInfo, UINT* pArgErr) override;

    // Advises itself; both calls succeed or fail the test.
    void Connect(IWebBrowser2& browser);
    void Disconnect();

    std::vector<std::string> events;
    std::vector<std::string> sources;  // of the documents completed; "(none)" without one
    std::vector<std::string> postData; // of the navigations begun
    std::vector<std::string> headers;
    std::string cancelPath;                          // this navigation is cancelled
    IDispatch* newWindow = nullptr;                  // handed over on "new window"
    std::function<void(const std::string&)> onEvent; // after it has been recorded

private:
    void* FindOther(REFIID iid) override;
    std::string Label(const DISPPARAMS& params, const char* pszEvent) const;
    void RecordBefore(DISPPARAMS& params);
    void RecordComplete(const DISPPARAMS& params);

    IWebBrowser2* m_browser = nullptr;
    DWORD m_cookie = 0;
};

} // namespace platform_test
