#include "browser/builtin/BuiltinBrowser.h"

#include <chrono>

#include "browser/common/BrowserEvents.h"

namespace platform {

BuiltinBrowser::~BuiltinBrowser() {
    StopLoading();
    EndEngine();
}

NetworkThread& BuiltinBrowser::Network() {
    if (!m_network) m_network = std::make_unique<NetworkThread>(std::make_shared<Inbox>(Link()));
    return *m_network;
}

HRESULT BuiltinBrowser::StartNavigation(NavigationRequest request) {
    m_immediateRefreshes = 0;
    m_credentials = {OriginOf(request.target.url), request.target.user, request.target.password};
    m_navigation = std::make_shared<Navigation>(*this, std::move(request));
    m_navigation->Begin();
    return S_OK;
}

void BuiltinBrowser::Refresh(const std::string& url) {
    const CComPtr<BuiltinBrowser> keep(this);
    StopLoading();
    SetDocument(nullptr);
    SetStatusText({});
    SetReadyState(READYSTATE_LOADING);
    SetBusy(true);
    NavigationRequest request;
    request.target.url = url;
    const auto navigation = std::make_shared<Navigation>(*this, std::move(request));
    m_navigation = navigation;
    navigation->BeginInDispatch();
}

void BuiltinBrowser::OnPageEnd(const std::string& url, const std::optional<RefreshRule>& refresh) {
    if (!refresh) return;
    m_refreshTarget = refresh->reference.empty() ? url : refresh->reference;
    m_refreshTimer = NextFetchId();
    Network().StartTimer(m_refreshTimer, std::chrono::seconds(refresh->seconds));
}

void BuiltinBrowser::OnNetworkEvent(NetworkEvent& event) {
    if (std::holds_alternative<TimerElapsed>(event.what)) {
        if (event.id != m_refreshTimer) return;
        m_immediateRefreshes = 0;
        Refresh(std::string(m_refreshTarget));
    } else if (const std::shared_ptr<Navigation> navigation = m_navigation) {
        navigation->OnEvent(event);
    }
}

void BuiltinBrowser::StopLoading() {
    if (m_refreshTimer != 0) Network().Cancel(m_refreshTimer);
    m_refreshTimer = 0;
    if (m_navigation) m_navigation->Abandon();
    m_navigation.reset();
}

void BuiltinBrowser::EndEngine() {
    m_network.reset();
    m_ownWindows.clear();
}

HRESULT BuiltinBrowser::StartNewWindow(NavigationRequest request) {
    Link()->Post([request = std::move(request)](BrowserObject& self) {
        static_cast<BuiltinBrowser&>(self).OpenWindow(request);
    });
    return S_OK;
}

// The client's window when a sink hands one over, else a browser of our own.
void BuiltinBrowser::OpenWindow(const NavigationRequest& request) {
    if (HasQuit()) return;
    bool isCancelled = false;
    const CComPtr<IDispatch> offered = RaiseNewWindow2(Events(), isCancelled);
    if (isCancelled || HasQuit()) return;
    CComPtr<IWebBrowser2> window;
    if (!offered || FAILED(offered.QueryInterface(&window))) {
        window = CComPtr<IWebBrowser2>(MakeObject<BuiltinBrowser>());
        m_ownWindows.push_back(window);
    }
    NavigateWith(*window, request);
}

} // namespace platform
