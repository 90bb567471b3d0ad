// Every document that a browser completes, taken from its events.
#pragma once

#include <string>
#include <vector>

#include <platform/Browser.h>

namespace zrhttp {

struct CollectedPage {
    std::string url;    // UTF-8
    std::string source; // the bytes received
};

// Listens while it exists; the browser must outlive it. Pages come in the order of their
// completion, a page after its frames. Documents that cannot be read are left out.
class PageCollector {
public:
    explicit PageCollector(IWebBrowser2* browser);
    ~PageCollector();
    PageCollector(const PageCollector&) = delete;
    PageCollector& operator=(const PageCollector&) = delete;

    std::vector<CollectedPage> TakePages();

private:
    class Sink;
    IWebBrowser2* m_browser;
    CComPtr<Sink> m_sink;
    DWORD m_cookie = 0;
};

} // namespace zrhttp
