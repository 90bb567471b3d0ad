// A browser whose states, documents and failures the test sets, and that records what it was asked.
#pragma once

#include <deque>
#include <functional>
#include <map>
#include <set>
#include <string>
#include <vector>

#include <platform/Browser.h>

#include "browser/common/ConnectionPoint.h"

namespace test_support {

// Writes its source into a stream; hands out its body's outer HTML when it has one.
class ScriptedDocument final : public ComObject<IHTMLDocument2, IPersistStreamInit> {
public:
    std::string source;
    std::string outerHtml;
    // Calls that fail: "IPersistStreamInit", "IHTMLDocument2", "Save", "get_body", "get_outerHTML".
    std::set<std::string> failing;
    std::function<bool(const std::string& call)> fails; // asked as well

    HRESULT QueryInterface(REFIID iid, void** ppObject) override;
    HRESULT Save(IStream* pStream, BOOL bClearDirty) override;
    HRESULT get_body(IHTMLElement** ppBody) override;
    HRESULT Invoke(DISPID, REFIID, LCID, WORD, DISPPARAMS*, VARIANT*, EXCEPINFO*, UINT*) override {
        return DISP_E_MEMBERNOTFOUND;
    }

private:
    bool Fails(const std::string& call) const {
        return failing.contains(call) || (fails && fails(call));
    }
    void* FindOther(REFIID iid) override {
        return iid == IDispatch::Iid ? static_cast<IDispatch*>(this) : nullptr;
    }
};

struct BrowserMoment {
    READYSTATE readyState = READYSTATE_COMPLETE;
    bool isBusy = false;
};

class ScriptedBrowser final : public ComObject<IWebBrowser2, IConnectionPointContainer> {
public:
    // What one look at the state finds; each get_Busy moves on to the next, the last stays.
    std::deque<BrowserMoment> moments{{}};
    CComPtr<IDispatch> document;
    bool isOffline = false;
    std::string location = "http://host/final";
    LONG_PTR window = 0;
    // Names of calls that fail, for example "get_Busy".
    std::set<std::string> failing;
    std::function<bool(const std::string& call)> fails; // asked as well
    std::string failureText;                            // what Invoke reports with a failing call
    // What happens inside a call, by its name.
    std::map<std::string, std::function<void()>> during;

    static constexpr const char* kLeftOut = "(left out)";
    // What Navigate2 was given.
    struct Navigation {
        std::string url;
        LONG flags = 0;
        std::string postData = kLeftOut;
        std::string headers = kLeftOut;
        bool operator==(const Navigation&) const = default;
    };
    std::vector<Navigation> navigations;
    std::vector<std::string> calls; // "Navigate2", "Stop", "Quit", "put_Visible -1", ...

    void SetSource(const std::string& source);
    int Count(const std::string& call) const;
    // Its events; raise them with the functions of browser/common/BrowserEvents.h.
    platform::ConnectionPoint& Events() { return *m_events; }
    IDispatch* Dispatch() { return static_cast<IWebBrowser2*>(this); }

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
    HRESULT get_Application(IDispatch** ppApplication) override;
    HRESULT get_StatusText(BSTR*) override { return E_NOTIMPL; }
    // What a control's wrapper calls, by identifier.
    HRESULT Invoke(DISPID, REFIID, LCID, WORD, DISPPARAMS*, VARIANT*, EXCEPINFO*, UINT*) override;
    // "Events" among the failing calls: the browser has none to connect with.
    HRESULT FindConnectionPoint(REFIID iid, IConnectionPoint** ppPoint) override;

private:
    bool Fails(const std::string& call) const {
        return failing.contains(call) || (fails && fails(call));
    }
    HRESULT Called(const std::string& call);
    HRESULT InvokeNavigate(const DISPPARAMS& params);
    HRESULT PutOffline(const DISPPARAMS& params);
    HRESULT GetProperty(DISPID member, VARIANT& result);
    void* FindOther(REFIID iid) override;

    const CComPtr<platform::ConnectionPoint> m_events = MakeObject<platform::ConnectionPoint>();
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

// While it lives, browser applications are these scripted browsers, in this order; then no more can
// be had.
class ScriptedApplication {
public:
    explicit ScriptedApplication(std::size_t count = 3);
    ScriptedBrowser& operator[](std::size_t index) const { return *m_browsers[index]; }
    // How many have been created.
    std::size_t Created() const { return m_created; }
    // References on a browser, beside the one held here.
    ULONG References(std::size_t index) const;

private:
    std::vector<CComPtr<ScriptedBrowser>> m_browsers;
    std::size_t m_created = 0;
    platform::ClassRegistration m_registration;
};

} // namespace test_support
