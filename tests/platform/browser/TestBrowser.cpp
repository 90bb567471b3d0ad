#include "platform/browser/TestBrowser.h"

#include <stdexcept>

#include <gtest/gtest.h>

#include "platform/browser/BrowserSink.h"
#include "support/PumpUntil.h"

namespace platform_test {

TestBrowser::TestBrowser() {
    OleInitialize(nullptr);
    const HRESULT hr = CoCreateInstance(CLSID_WebBrowser, nullptr, CLSCTX_INPROC_SERVER,
                                        IID_IWebBrowser2, reinterpret_cast<void**>(&m_browser));
    if (FAILED(hr)) throw std::runtime_error("no browser control");
}

HRESULT TestBrowser::Navigate(std::u16string_view url) {
    COleVariant target;
    target.vt = VT_BSTR;
    target.bstrVal = SysAllocStringLen(url.data(), static_cast<UINT>(url.size()));
    return m_browser->Navigate2(&target, nullptr, nullptr, nullptr, nullptr);
}

HRESULT TestBrowser::Navigate(const std::string& url, const std::string& postData,
                              const std::string& headers, LONG flags) {
    COleVariant target{CString(url)};
    COleVariant flagValue(flags);
    COleVariant frame;
    COleSafeArray data;
    if (!postData.empty())
        data.CreateOneDim(VT_UI1, static_cast<DWORD>(postData.size()), postData.data());
    COleVariant empty;
    COleVariant block{CString(headers)};
    return m_browser->Navigate2(&target, &flagValue, &frame, &data,
                                headers.empty() ? &empty : &block);
}

void TestBrowser::Load(const std::string& url, const std::string& postData,
                       const std::string& headers) {
    ASSERT_EQ(S_OK, Navigate(url, postData, headers)) << Status();
    ASSERT_EQ(READYSTATE_LOADING, State());
    ASSERT_TRUE(IsBusy());
    WaitUntilDone();
}

void TestBrowser::WaitUntilDone() {
    test_support::PumpUntil([this] { return !IsBusy(); }, "the end of the navigation");
}

void TestBrowser::WaitForState(READYSTATE state) {
    test_support::PumpUntil([&] { return State() == state; }, "the ready state");
}

READYSTATE TestBrowser::State() const {
    READYSTATE state = -1;
    EXPECT_EQ(S_OK, m_browser->get_ReadyState(&state));
    return state;
}

bool TestBrowser::IsBusy() const {
    VARIANT_BOOL isBusy = VARIANT_TRUE;
    EXPECT_EQ(S_OK, m_browser->get_Busy(&isBusy));
    return isBusy != VARIANT_FALSE;
}

bool TestBrowser::HasDocument() const {
    CComPtr<IDispatch> document;
    return SUCCEEDED(m_browser->get_Document(&document));
}

std::string TestBrowser::Source() const {
    CComPtr<IDispatch> document;
    return SUCCEEDED(m_browser->get_Document(&document)) ? SourceOf(document.Get()) : "(none)";
}

std::string TestBrowser::Status() const {
    CComBSTR text;
    EXPECT_EQ(S_OK, m_browser->get_StatusText(&text));
    return std::string(text.ToAnsi().View());
}

LONG TestBrowser::HttpStatus() const {
    CComPtr<IPageReply> reply;
    LONG status = -1;
    EXPECT_EQ(S_OK, m_browser.QueryInterface(&reply));
    EXPECT_EQ(S_OK, reply->get_Status(&status));
    return status;
}

std::string TestBrowser::Location() const {
    CComBSTR url;
    EXPECT_EQ(S_OK, m_browser->get_LocationURL(&url));
    return std::string(url.ToAnsi().View());
}

} // namespace platform_test
