// What a page loads: its documents, frame by frame, the states and events that come of it.
#pragma once

#include <map>
#include <memory>
#include <string>

#include "browser/chromium/DevToolsConnection.h"
#include "browser/chromium/DocumentLoad.h"
#include "browser/chromium/FrameProbe.h"
#include "browser/chromium/PageTraffic.h"
#include "browser/chromium/RequestOverride.h"
#include "browser/common/FrameBrowser.h"

namespace platform {

class ChromiumBrowser;
class ChromiumPage;

// A URL of the browser's without user information.
std::string ShownUrl(const std::string& url);

// On the owner's thread. Every event that it raises may end the load or the browser (a sink calls
// Navigate2, Stop or Quit), so each is asked about before anything goes on behind it.
class PageLoads : public std::enable_shared_from_this<PageLoads> {
public:
    explicit PageLoads(ChromiumPage& page);
    ~PageLoads();

    // The client's navigation; the browser is at ready state 1 and busy already.
    void Navigate(NavigationRequest request);
    // Nothing more comes of what is being loaded. The part of the source that has come stays.
    void Stop();
    void SetOffline(bool isOffline);
    // The page's renderer has died.
    void OnCrash();
    void OnEvent(DevToolsEvent& event);
    void Detach();

private:
    struct Frame {
        std::string parent;         // empty: the top level
        CComPtr<FrameBrowser> face; // null for the top level
        DocumentLoadPtr current;    // shown
        DocumentLoadPtr next;       // requested, not shown yet
        bool isLeaving = false;     // its page has asked for another document
        bool isOpened = false;      // a script writes into its document, and may never close it
        std::string session;        // of its renderer; empty: the page's main one
    };
    using Handler = void (PageLoads::*)(const DevToolsEvent&);

    // Whether an error page, or nothing, takes the place of what the frame shows.
    enum class Aftermath { errorPage, pageStays };

    ChromiumBrowser& Browser() const;
    Frame& Top();
    bool IsTop(const std::string& frame) const;
    BrowserObject& Face(const DocumentLoad& load);
    DocumentLoadPtr Find(const DevToolsEvent& event) const;
    bool IsShown(const DocumentLoadPtr& load);
    bool IsOver(const DocumentLoadPtr& load) const { return m_isDetached || load->isDone; }

    // The client's navigation.
    void Announce(const DocumentLoadPtr& load);
    void Start(const DocumentLoadPtr& load);
    void Request(const DocumentLoadPtr& load);
    void StartOver(const DocumentLoadPtr& load);
    void OnTopShown();
    void OnNavigateReply(const DocumentLoadPtr& load, const DevToolsReply& reply);
    std::string ReasonAgainst(const std::string& url) const;
    std::string ReasonOf(const std::string& error, const std::string& url) const;
    void AbandonAll();

    // Events of the page.
    void OnStartedNavigating(const DevToolsEvent& event);
    void OnRequest(const DevToolsEvent& event);
    void OnResponse(const DevToolsEvent& event);
    void OnData(const DevToolsEvent& event);
    void OnFinished(const DevToolsEvent& event);
    void OnFailed(const DevToolsEvent& event);
    void OnNavigated(const DevToolsEvent& event);
    void OnStoppedLoading(const DevToolsEvent& event);
    void OnFrameAttached(const DevToolsEvent& event);
    void OnFrameDetached(const DevToolsEvent& event);
    void OnNavigationRequested(const DevToolsEvent& event);
    void OnNavigationScheduled(const DevToolsEvent& event);
    void OnNavigationCleared(const DevToolsEvent& event);
    void OnLoadEvent(const DevToolsEvent& event);
    void OnDocumentOpened(const DevToolsEvent& event);
    void OnPaused(const DevToolsEvent& event) { m_override.OnPaused(event.params); }
    void OnAuthRequired(const DevToolsEvent& event) { m_override.OnAuthRequired(event.params); }

    // What becomes of a document.
    void Begin(const std::string& frame, const std::string& loader, const std::string& url);
    void BeginClients(const std::string& loader);
    void BeginPages(const std::string& frame, const std::string& loader, const std::string& url);
    void TakeHead(const DocumentLoadPtr& load, const std::string& session);
    void OnSourceChanged(const DocumentLoadPtr& load);
    void Commit(const DocumentLoadPtr& load);
    void Supersede(const DocumentLoadPtr& load);
    void LoadEnded(const DocumentLoadPtr& load);
    void CompleteIfReady(const DocumentLoadPtr& load);
    void Complete(const DocumentLoadPtr& load);
    bool AreFramesDone(const std::string& parent) const;
    void RaiseComplete(const DocumentLoadPtr& load);
    void Fail(const DocumentLoadPtr& load, const std::string& reason, Aftermath aftermath);
    void ShowFailure(const DocumentLoadPtr& load, const std::string& reason);
    void Cancel(const DocumentLoadPtr& load);
    void StayOnPage(const DocumentLoadPtr& failed);
    void CheckSize(const DocumentLoadPtr& load);
    void GiveUp(const DocumentLoadPtr& load, const std::string& reason);
    void End(const DocumentLoadPtr& load);
    DocumentLoadPtr Enclosing(const std::string& frame) const;
    void DropFrames();
    void DropFrame(const std::string& id);

    // What only documents that scripts have opened hold up.
    void CheckOpened();
    bool WaitsForOpened(const std::string& frame) const;
    bool IsLoading(const PageTraffic::Request& request) const;
    bool IsAllElseQuiet() const;
    FrameProbe::Questions QuestionsAboutOpened() const;
    void OnProbed(const FrameProbe::Answers& answers);
    void CompleteOpened();

    ChromiumPage& m_page; // not touched once detached
    bool m_isDetached = false;
    RequestOverride m_override;
    DocumentLoadPtr m_client; // the client's navigation, until the browser has named it
    bool m_isClientDue = false;
    bool m_isShowingAnother = false; // when the client's navigation was sent
    bool m_hasShownAnother = false;  // since then
    bool m_isClientHeldUp = false;   // until then
    std::string m_shownUrl;          // of the top level, with the fragment
    std::map<std::string, Frame> m_frames;
    std::map<std::string, DocumentLoadPtr> m_loads; // by loader
    PageTraffic m_traffic;
    bool m_hasOpened = false;            // some frame, at some time
    std::shared_ptr<FrameProbe> m_probe; // until it is answered, or what it asks is out of date
};

} // namespace platform
