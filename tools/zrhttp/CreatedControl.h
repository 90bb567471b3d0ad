// The browser control that a getter makes and keeps to itself.
#pragma once

#include <optional>
#include <utility>

#include <platform/Automation.h>
#include <platform/Browser.h>

namespace zrhttp {

// Holds the first one made while it lives.
class CreatedControl {
public:
    IWebBrowser2* Browser() const { return m_browser.Get(); }

private:
    HRESULT Create(REFIID iid, void** ppObject);

    CComPtr<IWebBrowser2> m_browser;
    std::optional<platform::ClassRegistration> m_registration{
        std::in_place, CLSID_WebBrowser,
        [this](REFIID iid, void** ppObject) { return Create(iid, ppObject); }};
};

} // namespace zrhttp
