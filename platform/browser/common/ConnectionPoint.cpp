#include "browser/common/ConnectionPoint.h"

#include <algorithm>

namespace platform {

HRESULT ConnectionPoint::Advise(IUnknown* pSink, DWORD* pdwCookie) {
    if (!pSink || !pdwCookie) return E_POINTER;
    void* pDispatch = nullptr;
    HRESULT hr = pSink->QueryInterface(DIID_DWebBrowserEvents2, &pDispatch);
    if (FAILED(hr)) hr = pSink->QueryInterface(IDispatch::Iid, &pDispatch);
    if (FAILED(hr)) return hr;
    CComPtr<IDispatch> sink;
    sink.Attach(static_cast<IDispatch*>(pDispatch));
    *pdwCookie = ++m_lastCookie;
    m_sinks.emplace_back(*pdwCookie, std::move(sink));
    return S_OK;
}

HRESULT ConnectionPoint::Unadvise(DWORD dwCookie) {
    const auto found = std::find_if(m_sinks.begin(), m_sinks.end(),
                                    [&](const Entry& entry) { return entry.first == dwCookie; });
    if (found == m_sinks.end()) return CONNECT_E_NOCONNECTION;
    const Entry removed = std::move(*found); // released when the list is in order again
    m_sinks.erase(found);
    return S_OK;
}

void ConnectionPoint::Raise(DISPID event, DISPPARAMS& params) {
    const std::vector<Entry> sinks = m_sinks;
    for (const auto& [cookie, sink] : sinks) {
        const bool isStillThere =
            std::any_of(m_sinks.begin(), m_sinks.end(),
                        [&, id = cookie](const Entry& entry) { return entry.first == id; });
        if (isStillThere)
            sink->Invoke(event, IID{}, 0, DISPATCH_METHOD, &params, nullptr, nullptr, nullptr);
    }
}

} // namespace platform
