#include "zrhttp/CollectedPages.h"

#include <ZrHbHtmlTools.h>
#include <platform/CodePage.h>

#include "zrhttp/Errors.h"

namespace zrhttp {
namespace {

bool ReadSource(IWebBrowser2& browser, std::string& source) {
    CComPtr<IDispatch> document;
    if (FAILED(browser.get_Document(&document)) || !document) return false;
    CByteBuffer page(4096, 4096);
    CString error;
    DWORD result = 0;
    DWORD length = 0;
    CZrHbHtmlTools::GetSourceFromDocumentDispatchPtr(document.Get(), result, page, error, length,
                                                     READYSTATE_COMPLETE, FALSE);
    if (result != 0) return false;
    source.assign(page.GetData(), page.GetData() + page.GetSize());
    return true;
}

std::string LocationOf(IWebBrowser2& browser) {
    CComBSTR url;
    browser.get_LocationURL(&url);
    return platform::Utf8FromWide(url.View());
}

} // namespace

class PageCollector::Sink final : public ComObject<IDispatch> {
public:
    std::vector<CollectedPage> pages;

    HRESULT Invoke(DISPID member, REFIID, LCID, WORD, DISPPARAMS* parameters, VARIANT*, EXCEPINFO*,
                   UINT*) override {
        if (member != DISPID_DOCUMENTCOMPLETE) return DISP_E_MEMBERNOTFOUND;
        // Arguments, last first: the URL, then the frame's browser.
        if (!parameters || parameters->cArgs < 2) return E_INVALIDARG;
        const VARIANT& sender = parameters->rgvarg[1];
        if (sender.vt != VT_DISPATCH || !sender.pdispVal) return E_INVALIDARG;
        CComPtr<IWebBrowser2> browser;
        if (FAILED(sender.pdispVal->QueryInterface(IID_IWebBrowser2,
                                                   reinterpret_cast<void**>(&browser))))
            return S_OK;
        CollectedPage page;
        if (!ReadSource(*browser, page.source)) return S_OK;
        page.url = LocationOf(*browser);
        pages.push_back(std::move(page));
        return S_OK;
    }

protected:
    void* FindOther(REFIID iid) override {
        return iid == DIID_DWebBrowserEvents2 ? static_cast<IDispatch*>(this) : nullptr;
    }
};

PageCollector::PageCollector(IWebBrowser2* browser)
    : m_browser(browser), m_sink(MakeObject<Sink>()) {
    if (!AfxConnectionAdvise(m_browser, DIID_DWebBrowserEvents2, m_sink.Get(), TRUE, &m_cookie))
        throw SystemError("the browser does not deliver its events");
}

PageCollector::~PageCollector() {
    AfxConnectionUnadvise(m_browser, DIID_DWebBrowserEvents2, m_sink.Get(), TRUE, m_cookie);
}

std::vector<CollectedPage> PageCollector::TakePages() {
    return std::move(m_sink->pages);
}

} // namespace zrhttp
