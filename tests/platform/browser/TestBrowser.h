// A browser control in the hands of a test.
#pragma once

#include <string>
#include <string_view>

#include <platform/Browser.h>

namespace platform_test {

class TestBrowser {
public:
    TestBrowser();

    IWebBrowser2& operator*() const { return *m_browser; }
    IWebBrowser2* operator->() const { return m_browser.Get(); }
    IWebBrowser2* Get() const { return m_browser.Get(); }
    void Release() { m_browser.Release(); }

    // URL in UTF-16 or ANSI; empty post data and headers are left out.
    HRESULT Navigate(std::u16string_view url);
    HRESULT Navigate(const std::string& url, const std::string& postData = "",
                     const std::string& headers = "", LONG flags = 14);
    // Navigates and serves messages until the browser is no longer busy.
    void Load(const std::string& url, const std::string& postData = "",
              const std::string& headers = "");
    void WaitUntilDone();
    void WaitForState(READYSTATE state);

    READYSTATE State() const;
    bool IsBusy() const;
    bool HasDocument() const;
    std::string Source() const; // "(none)" without a document
    std::string Status() const;
    LONG HttpStatus() const;
    std::string Location() const;

private:
    CComPtr<IWebBrowser2> m_browser;
};

} // namespace platform_test
