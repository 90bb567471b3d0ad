// The connection point for DIID_DWebBrowserEvents2.
#pragma once

#include <utility>
#include <vector>

#include <platform/Browser.h>

namespace platform {

// Lives on the browser's thread, and on after the browser as long as somebody holds it.
class ConnectionPoint final : public ComObject<IConnectionPoint> {
public:
    HRESULT Advise(IUnknown* pSink, DWORD* pdwCookie) override;
    HRESULT Unadvise(DWORD dwCookie) override;

    bool HasSinks() const { return !m_sinks.empty(); }
    // Calls every sink that was there at the beginning and still is when its turn comes: sinks may
    // come and go during an event.
    void Raise(DISPID event, DISPPARAMS& params);

private:
    using Entry = std::pair<DWORD, CComPtr<IDispatch>>;

    std::vector<Entry> m_sinks;
    DWORD m_lastCookie = 0;
};

} // namespace platform
