// What every browser object has in common, whichever engine loads its pages: identity, state,
// dispatch, connection point. Engines derive from it.
#pragma once

#include <memory>
#include <string>

#include <platform/Browser.h>

#include "browser/common/ConnectionPoint.h"
#include "browser/common/HostedControl.h"
#include "browser/common/NavigationRequest.h"
#include "browser/common/OwnerLink.h"

namespace platform {

// Belongs to the thread that makes it: calls, state and destruction all happen there.
class BrowserObject
    : public ComObject<IWebBrowser2, IConnectionPointContainer, IHostedControl, IPageReply> {
public:
    BrowserObject();

    HRESULT Navigate2(VARIANT* URL, VARIANT* Flags, VARIANT* TargetFrameName, VARIANT* PostData,
                      VARIANT* Headers) final;
    HRESULT Stop() final;
    HRESULT Quit() final;
    HRESULT get_ReadyState(READYSTATE* pState) final;
    HRESULT get_Busy(VARIANT_BOOL* pBusy) final;
    HRESULT get_Document(IDispatch** ppDocument) final;
    HRESULT get_Offline(VARIANT_BOOL* pOffline) final;
    HRESULT put_Offline(VARIANT_BOOL offline) final;
    HRESULT get_LocationURL(BSTR* pUrl) final;
    HRESULT get_Visible(VARIANT_BOOL* pVisible) final;
    HRESULT put_Visible(VARIANT_BOOL visible) final;
    HRESULT get_HWND(LONG_PTR* pWindow) final;
    HRESULT get_Application(IDispatch** ppApplication) final;
    HRESULT get_StatusText(BSTR* pText) final;
    HRESULT get_Status(LONG* pStatus) final;
    HRESULT Invoke(DISPID member, REFIID reserved, LCID locale, WORD flags, DISPPARAMS* pParams,
                   VARIANT* pResult, EXCEPINFO* pExceptInfo, UINT* pArgErr) final;

    HRESULT FindConnectionPoint(REFIID iid, IConnectionPoint** ppPoint) final;
    HRESULT SetHostWindow(HWND hWnd) final;

    // For the engine, on the owner's thread.
    IDispatch* Dispatch() { return static_cast<IWebBrowser2*>(this); }
    ConnectionPoint& Events() { return *m_events; }
    const std::shared_ptr<OwnerLink>& Link() { return m_link; }
    bool IsOffline() const { return m_isOffline; }
    bool HasQuit() const { return m_hasQuit; }
    bool IsVisible() const { return m_isVisible; }
    READYSTATE ReadyState() const { return m_readyState; }
    void SetReadyState(READYSTATE state) { m_readyState = state; }
    void SetBusy(bool isBusy) { m_isBusy = isBusy; }
    void SetDocument(CComPtr<IDispatch> document) { m_document = std::move(document); }
    void SetLocation(const std::string& url) { m_location = url; }
    void SetStatusText(const std::string& text) { m_statusText = text; }
    void SetReplyStatus(int status) { m_replyStatus = status; } // HTTP; 0: none
    // The window has become visible, or not, whoever wanted it: tells the sinks.
    void NoteVisible(bool isVisible);
    // The browser has gone away by itself: as after Quit, without asking the engine for anything.
    void NoteGone();

protected:
    ~BrowserObject() override;

    // What the engine does. StartNavigation is called with a request that is in order; the object
    // is at ready state 1 and busy already, without a document. A request to open a new window
    // comes through StartNewWindow instead and changes no state.
    virtual HRESULT StartNavigation(NavigationRequest request) = 0;
    virtual HRESULT StartNewWindow(NavigationRequest request) = 0;
    virtual void StopLoading() = 0;
    // After StopLoading, once: ends helpers. Later calls on the object answer RPC_E_DISCONNECTED.
    virtual void EndEngine() = 0;
    // False once a browser of its own process has died: every call answers RPC_E_DISCONNECTED.
    virtual bool IsEngineAlive() const { return true; }
    virtual void ShowWindow(bool /*isVisible*/) {}
    virtual void SetEngineOffline(bool /*isOffline*/) {}
    // The window that shows the pages; the host's for a control.
    virtual HWND Window() const { return m_hostWindow; }

    void* FindOther(REFIID iid) override;

private:
    bool IsGone() const { return m_hasQuit || !IsEngineAlive(); }
    void RaiseQuit();
    HRESULT InvokeMethod(DISPID member, DISPPARAMS& params);
    HRESULT DispatchDocument(IDispatch*& document);
    HRESULT GetProperty(DISPID member, VARIANT& result);
    HRESULT PutProperty(DISPID member, const VARIANT& value);
    HRESULT InvokeNavigate(DISPPARAMS& params);

    const CComPtr<ConnectionPoint> m_events;
    const std::shared_ptr<OwnerLink> m_link;
    READYSTATE m_readyState = READYSTATE_UNINITIALIZED;
    bool m_isBusy = false;
    bool m_isVisible = false;
    bool m_isOffline = false;
    bool m_hasQuit = false;
    HWND m_hostWindow = nullptr;
    CComPtr<IDispatch> m_document;
    std::string m_location;
    std::string m_statusText;
    int m_replyStatus = 0;
};

} // namespace platform
