#include "platform/browser/BrowserSink.h"

#include <gtest/gtest.h>

#include <platform/CodePage.h>

namespace platform_test {
namespace {

// The argument at a position of the event's definition; they lie last first.
VARIANT& Argument(const DISPPARAMS& params, UINT position) {
    VARIANT& argument = params.rgvarg[params.cArgs - 1 - position];
    return argument.vt == (VT_BYREF | VT_VARIANT) ? *argument.pvarVal : argument;
}

std::string TextOf(const VARIANT& value) {
    if (value.vt != VT_BSTR || !value.bstrVal) return {};
    return platform::AnsiFromWide({value.bstrVal, SysStringLen(value.bstrVal)});
}

std::string BytesOf(const VARIANT& value) {
    if (value.vt != (VT_ARRAY | VT_UI1)) return {};
    LONG bound = -1;
    void* data = nullptr;
    SafeArrayGetUBound(value.parray, 1, &bound);
    SafeArrayAccessData(value.parray, &data);
    std::string bytes(static_cast<const char*>(data), static_cast<std::size_t>(bound + 1));
    SafeArrayUnaccessData(value.parray);
    return bytes;
}

std::string PathOf(const std::string& url) {
    const std::size_t host = url.find("://");
    const std::size_t path = host == std::string::npos ? host : url.find('/', host + 3);
    return path == std::string::npos ? url : url.substr(path);
}

} // namespace

std::string SourceOf(IDispatch* document) {
    CComPtr<IPersistStreamInit> persist;
    CComPtr<IStream> writer;
    CComPtr<IStream> reader;
    if (FAILED(document->QueryInterface(IPersistStreamInit::Iid,
                                        reinterpret_cast<void**>(&persist))) ||
        FAILED(CreateStreamOnHGlobal(nullptr, TRUE, &writer)) || FAILED(writer->Clone(&reader)) ||
        FAILED(persist->Save(writer.Get(), FALSE))) {
        ADD_FAILURE() << "the document cannot be read";
        return {};
    }
    std::string source;
    char buffer[4096];
    for (ULONG count = 1; count > 0;) {
        EXPECT_EQ(S_OK, reader->Read(buffer, sizeof buffer, &count));
        source.append(buffer, count);
    }
    return source;
}

void* BrowserSink::FindOther(REFIID iid) {
    return iid == DIID_DWebBrowserEvents2 ? static_cast<IDispatch*>(this) : nullptr;
}

void BrowserSink::Connect(IWebBrowser2& browser) {
    m_browser = &browser;
    ASSERT_TRUE(AfxConnectionAdvise(&browser, DIID_DWebBrowserEvents2, this, TRUE, &m_cookie));
}

void BrowserSink::Disconnect() {
    ASSERT_TRUE(AfxConnectionUnadvise(m_browser, DIID_DWebBrowserEvents2, this, TRUE, m_cookie));
}

std::string BrowserSink::Label(const DISPPARAMS& params, const char* pszEvent) const {
    CComPtr<IDispatch> application;
    m_browser->get_Application(&application);
    const bool isTop = Argument(params, 0).pdispVal == application.Get();
    return (isTop ? "" : "frame ") + std::string(pszEvent) + " " +
           PathOf(TextOf(Argument(params, 1)));
}

void BrowserSink::RecordBefore(DISPPARAMS& params) {
    ASSERT_EQ(7u, params.cArgs);
    events.push_back(Label(params, "before"));
    postData.push_back(BytesOf(Argument(params, 4)));
    headers.push_back(TextOf(Argument(params, 5)));
    if (!cancelPath.empty() && events.back().ends_with(" " + cancelPath))
        *Argument(params, 6).pboolVal = VARIANT_TRUE;
}

void BrowserSink::RecordComplete(const DISPPARAMS& params) {
    events.push_back(Label(params, "complete"));
    CComPtr<IWebBrowser2> browser;
    CComPtr<IDispatch> document;
    ASSERT_EQ(S_OK, Argument(params, 0).pdispVal->QueryInterface(
                        IWebBrowser2::Iid, reinterpret_cast<void**>(&browser)));
    const bool hasDocument = SUCCEEDED(browser->get_Document(&document));
    sources.push_back(hasDocument ? SourceOf(document.Get()) : "(none)");
}

HRESULT BrowserSink::Invoke(DISPID event, REFIID, LCID, WORD, DISPPARAMS* pParams, VARIANT*,
                            EXCEPINFO*, UINT*) {
    switch (event) {
    case DISPID_BEFORENAVIGATE2:
        RecordBefore(*pParams);
        break;
    case DISPID_NAVIGATECOMPLETE2:
        events.push_back(Label(*pParams, "navigated"));
        break;
    case DISPID_DOCUMENTCOMPLETE:
        RecordComplete(*pParams);
        break;
    case DISPID_NEWWINDOW2:
        events.push_back("new window");
        *Argument(*pParams, 0).ppdispVal = CComPtr<IDispatch>(newWindow).Detach();
        break;
    case DISPID_ONVISIBLE:
        events.push_back("visible " + std::to_string(Argument(*pParams, 0).boolVal != 0));
        break;
    case DISPID_ONQUIT:
        events.push_back("quit");
        break;
    default:
        ADD_FAILURE() << "unknown event " << event;
        return S_OK;
    }
    if (onEvent) onEvent(std::string(events.back()));
    return S_OK;
}

} // namespace platform_test
