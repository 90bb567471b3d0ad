// The event sink of a browser application: follows its navigations, and gives every window that
// its pages open a browser application and a sink of its own.
#pragma once

#include <memory>

#include <platform/Browser.h>
#include <platform/CommandTarget.h>
#include <platform/String.h>

template <class... TArguments>
struct SinkCallback {
    using Function = void (*)(void* pContext, TArguments...);
    Function pFunction = nullptr;
    void* pContext = nullptr;
};
using SinkNotice = SinkCallback<>;
using SinkPage = SinkCallback<const CString& /*page*/, const CString& /*strUrl*/>;

// The sinks of the windows opened from a sink's browser are its children and belong to it. Every
// sink holds a reference of its own on its browser: a child the one that came with the browser's
// creation, so that the window stays while the child is there.
//
// Events come on the thread of the browser, in the dispatch of its messages. A callback may
// disconnect or destroy the sink; nothing is called after that.
class CZrHbIE4Events final : public CCmdTarget {
public:
    explicit CZrHbIE4Events(CComPtr<IWebBrowser2> browser);
    // Releases the tree.
    ~CZrHbIE4Events() override;

    // Connects with the browser's events. bKeepInvisible: the browser, and every window opened
    // from it, is hidden again whenever it becomes visible.
    bool Advise(BOOL bKeepInvisible);

    // Called once: the top level's document has been reached, or the browser has quit.
    void SetOnTopNavigateComplete(SinkNotice callback) { m_onTopNavigateComplete = callback; }
    // Called once: a frame begins to navigate, the top level is complete, or the browser has quit.
    void SetOnFrameNavigateOrTopComplete(SinkNotice callback) {
        m_onFrameNavigateOrTopComplete = callback;
    }
    // The two above for the next window that opens; called here should the browser quit before.
    void SetOnNewWindowNavigated(SinkNotice callback) { m_onNewWindowNavigated = callback; }
    void SetOnNewWindowLoaded(SinkNotice callback) { m_onNewWindowLoaded = callback; }
    // Called for every navigation, and every document with its source and its URL.
    void SetOnEachBeforeNavigate(SinkNotice callback) { m_onEachBeforeNavigate = callback; }
    void SetOnEachDocumentComplete(SinkPage callback) { m_onEachDocumentComplete = callback; }

    // Destroys the children, which lets go of their browsers: windows that may be visible stay
    // open, kept invisible they quit. Then ends the connection with the events and, when asked to,
    // the hold on this browser.
    void ReleaseTree(bool isBrowserReleased);

    // The window of the last browser opened from here; null before.
    HWND NewBrowserWindow() const { return m_hNewBrowserWindow; }
    // Whether the browser that the new window is, or else is to be opened from, still answers.
    bool IsNewWindowPossible() const;

private:
    std::span<const DispatchEntry> GetDispatchMap() const override;
    BOOL GetDispatchIID(IID* pIid) const override;

    void OnBeforeNavigate2(IDispatch* pDisp, VARIANT* URL, VARIANT* Flags, VARIANT* TargetFrameName,
                           VARIANT* PostData, VARIANT* Headers, VARIANT_BOOL* Cancel);
    void OnDocumentComplete(IDispatch* pDisp, VARIANT* URL);
    void OnDownloadBegin() {}
    void OnDownloadComplete() {}
    void OnNavigateComplete2(IDispatch* pDisp, VARIANT* URL);
    void OnNewWindow2(IDispatch** ppDisp, VARIANT_BOOL* Cancel);
    void OnVisible(BOOL bVisible);
    void OnQuit();

    bool IsTopLevel(const IDispatch* pDisp) const;
    void AdoptNewBrowser(CComPtr<IWebBrowser2> browser);
    void AppendChild(std::unique_ptr<CZrHbIE4Events> child);
    void ReleaseBrowser();

    DWORD m_dwCookie = 0; // 0 when not advised
    std::unique_ptr<CZrHbIE4Events> m_firstChild;
    std::unique_ptr<CZrHbIE4Events> m_nextSibling;
    CComPtr<IWebBrowser2> m_browser;
    HWND m_hNewBrowserWindow = nullptr;
    BOOL m_bKeepInvisible = FALSE;
    SinkNotice m_onNewWindowNavigated;
    SinkNotice m_onNewWindowLoaded;
    SinkNotice m_onTopNavigateComplete;
    SinkNotice m_onFrameNavigateOrTopComplete;
    SinkNotice m_onEachBeforeNavigate;
    SinkPage m_onEachDocumentComplete;
    // Expires with the sink, for handlers that go on after a callback.
    std::shared_ptr<const bool> m_life = std::make_shared<const bool>(true);
};
