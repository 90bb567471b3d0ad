// The browser object of the builtin engine: pages come over libcurl, in the caller's process.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "browser/builtin/Navigation.h"
#include "browser/builtin/NetworkThread.h"
#include "browser/common/BrowserObject.h"

namespace platform {

class BuiltinBrowser final : public BrowserObject {
public:
    // For the navigation that is under way, on the owner's thread.
    NetworkThread& Network();
    FetchId NextFetchId() { return ++m_lastFetch; }
    const Credentials& CurrentCredentials() const { return m_credentials; }
    // How many immediate refreshes there have been in a row, this one included.
    int CountRefresh() { return ++m_immediateRefreshes; }
    // Leaves the page for another one, by the page's own wish.
    void Refresh(const std::string& url);
    void OnPageEnd(const std::string& url, const std::optional<RefreshRule>& refresh);

    // From the inbox.
    void OnNetworkEvent(NetworkEvent& event);

protected:
    ~BuiltinBrowser() override;

    HRESULT StartNavigation(NavigationRequest request) override;
    HRESULT StartNewWindow(NavigationRequest request) override;
    void StopLoading() override;
    void EndEngine() override;

private:
    void OpenWindow(const NavigationRequest& request);

    std::unique_ptr<NetworkThread> m_network; // from the first navigation on
    std::shared_ptr<Navigation> m_navigation;
    FetchId m_lastFetch = 0;
    Credentials m_credentials;
    int m_immediateRefreshes = 0;
    FetchId m_refreshTimer = 0; // 0: none
    std::string m_refreshTarget;
    std::vector<CComPtr<IWebBrowser2>> m_ownWindows; // opened for pages that nobody took
};

} // namespace platform
