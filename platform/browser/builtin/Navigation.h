// One navigation of a browser: the page and its frames, from the request to DocumentComplete.
#pragma once

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "browser/builtin/NetworkMessages.h"
#include "browser/common/FrameBrowser.h"

namespace platform {

class BuiltinBrowser;

// On the owner's thread. Every event that it raises may end it (a sink calls Navigate2, Stop or
// Quit), so nothing happens behind an event before it has been asked whether it still goes on.
class Navigation : public std::enable_shared_from_this<Navigation> {
public:
    Navigation(BuiltinBrowser& browser, NavigationRequest request);

    // Starts the request; with a sink, or without a network to use, in a later dispatch.
    void Begin();
    // The same, from within a dispatch.
    void BeginInDispatch();
    // Nothing more comes of it.
    void Abandon();
    void OnEvent(NetworkEvent& event);

private:
    struct Page;
    using PagePtr = std::shared_ptr<Page>;

    void Announce(const PagePtr& page);
    void Fetch(const PagePtr& page);
    void OnHead(const PagePtr& page, const HeadReceived& head);
    void OnPage(const PagePtr& page, PageReceived& received);
    void StartFrames(const PagePtr& page, const std::vector<std::string>& urls);
    bool IsOwnAncestor(const Page& page, const std::string& url) const;
    void CompleteIfReady(const PagePtr& page);
    void Complete(const PagePtr& page);
    bool RefreshAtOnce(const PagePtr& page);
    void SettleState(Page& page);
    void Fail(const PagePtr& page, const std::string& url, const std::string& reason);
    void End(const PagePtr& page);
    BrowserObject& Face(const Page& page) const;

    BuiltinBrowser& m_browser; // not touched once abandoned
    const PagePtr m_top;
    const std::shared_ptr<ByteBudget> m_budget; // of the page with its frames
    std::map<FetchId, PagePtr> m_fetches;
    std::size_t m_frameCount = 0;
    bool m_isAbandoned = false;
};

} // namespace platform
