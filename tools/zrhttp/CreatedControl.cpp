#include "zrhttp/CreatedControl.h"

namespace zrhttp {

HRESULT CreatedControl::Create(REFIID iid, void** ppObject) {
    m_registration.reset(); // the class is again that of the platform
    const HRESULT hr =
        CoCreateInstance(CLSID_WebBrowser, nullptr, CLSCTX_INPROC_SERVER, iid, ppObject);
    if (SUCCEEDED(hr))
        static_cast<IUnknown*>(*ppObject)->QueryInterface(IID_IWebBrowser2,
                                                          reinterpret_cast<void**>(&m_browser));
    return hr;
}

} // namespace zrhttp
