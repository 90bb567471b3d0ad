// A browser whose states, documents and failures the test sets, and that records what it was asked.
#pragma once

#include <deque>
#include <set>
#include <string>
#include <vector>

#include <platform/Browser.h>

namespace test_support {

// Writes its source into a stream; hands out its body's outer HTML when it has one.
class ScriptedDocument final : public ComObject<IHTMLDocument2, IPersistStreamInit> {
public:
    std::string source;
    std::string outerHtml;
    // Calls that fail: "IPersistStreamInit", "IHTMLDocument2", "Save", "get_body", "get_outerHTML".
    std::set<std::string> failing;

    HRESULT QueryInterface(REFIID iid, void** ppObject) override;
    HRESULT Save(IStream* pStream, BOOL bClearDirty) override;
    HRESULT get_body(IHTMLElement** ppBody) override;
    HRESULT Invoke(DISPID, REFIID, LCID, WORD, DISPPARAMS*, VARIANT*, EXCEPINFO*, UINT*) override {
        return DISP_E_MEMBERNOTFOUND;
    }

private:
    void* FindOther(REFIID iid) override {
        return iid == IDispatch::Iid ? static_cast<IDispatch*>(this) : nullptr;
    }
};

struct BrowserMoment {
    READYSTATE readyState = READYSTATE_COMPLETE;
    bool isBusy = false;
};

class ScriptedBrowser final : public ComObject<IWebBrowser2> {
public:
    // What one look at the state finds; each get_Busy moves on to the next, the last stays.
    std::deque<BrowserMoment> moments{{}};
    CComPtr<IDispatch> document;
    bool isOffline = false;
    std::string location = "http://host/final";
    LONG_PTR window = 0;
    // Names of calls that fail, for example "get_Busy".
    std::set<std::string> failing;

    // What Navigate2 was given.
    struct Navigation {
        std::string url;
        LONG flags = 0;
        bool hasPostData = false;
        std::string postData;
        bool hasHeaders = false;
        std::string headers;
    };
    std::vector<Navigation> navigations;
    std::vector<std::string> calls; // "Navigate2", "Stop", "Quit", "put_Visible -1", ...

    void SetSource(const std::string& source);
    int Count(const std::string& call) const;

    HRESULT Navigate2(VARIANT*, VARIANT*, VARIANT*, VARIANT*, VARIANT*) override;
    HRESULT Stop() override { return Called("Stop"); }
    HRESULT Quit() override { return Called("Quit"); }
    HRESULT get_ReadyState(READYSTATE* pState) override;
    HRESULT get_Busy(VARIANT_BOOL* pBusy) override;
    HRESULT get_Document(IDispatch** ppDocument) override;
    HRESULT get_Offline(VARIANT_BOOL* pOffline) override;
    HRESULT put_Offline(VARIANT_BOOL) override { return Called("put_Offline"); }
    HRESULT get_LocationURL(BSTR* pUrl) override;
    HRESULT get_Visible(VARIANT_BOOL*) override { return Called("get_Visible"); }
    HRESULT put_Visible(VARIANT_BOOL visible) override {
        return Called("put_Visible " + std::to_string(visible));
    }
    HRESULT get_HWND(LONG_PTR* pWindow) override;
    HRESULT get_Application(IDispatch**) override { return E_NOTIMPL; }
    HRESULT get_StatusText(BSTR*) override { return E_NOTIMPL; }
    HRESULT Invoke(DISPID, REFIID, LCID, WORD, DISPPARAMS*, VARIANT*, EXCEPINFO*, UINT*) override {
        return DISP_E_MEMBERNOTFOUND;
    }

private:
    HRESULT Called(const std::string& call);
    void* FindOther(REFIID iid) override;
};

// While it lives, the browser control is this one scripted browser.
class ScriptedControl {
public:
    ScriptedControl();
    ScriptedBrowser& operator*() const { return *m_browser; }
    ScriptedBrowser* operator->() const { return m_browser.Get(); }

private:
    CComPtr<ScriptedBrowser> m_browser;
    platform::ClassRegistration m_registration;
};

} // namespace test_support
