// Browser automation: the browser's interface, its events, its documents.
#pragma once

#include "Automation.h"
#include "Export.h"

ZRHB_EXPORT_BEGIN

constexpr CLSID CLSID_WebBrowser{
    0x8856F961, 0x340A, 0x11D0, {0xA9, 0x6B, 0x00, 0xC0, 0x4F, 0xD7, 0x05, 0xA2}};
constexpr CLSID CLSID_InternetExplorer{
    0x0002DF01, 0x0000, 0x0000, {0xC0, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x46}};

using READYSTATE = LONG;
constexpr READYSTATE READYSTATE_UNINITIALIZED = 0;
constexpr READYSTATE READYSTATE_LOADING = 1;     // navigating
constexpr READYSTATE READYSTATE_LOADED = 2;      // reply head received
constexpr READYSTATE READYSTATE_INTERACTIVE = 3; // source readable so far
constexpr READYSTATE READYSTATE_COMPLETE = 4;    // document and all frames done, or failed

constexpr LONG navOpenInNewWindow = 1;
constexpr LONG navNoHistory = 2;
constexpr LONG navNoReadFromCache = 4;
constexpr LONG navNoWriteToCache = 8;

// A browser: the control or the application. All calls on the thread that created it; it makes
// progress while that thread serves its messages, and raises its events in those dispatches.
struct IWebBrowser2 : IDispatch {
    static constexpr IID Iid{
        0xD30C1661, 0xCDAF, 0x11D0, {0x8A, 0x3E, 0x00, 0xC0, 0x4F, 0xC9, 0xE2, 0x6E}};
    // Starts loading URL (VT_BSTR). PostData: VT_ARRAY|VT_UI1 (a POST request) or empty; Headers:
    // VT_BSTR, a block of header lines each ending in CR LF, or empty; Flags: VT_I4. Sets ready
    // state 1 and busy before it returns. Fails, with get_StatusText telling why, when the request
    // cannot be started at all (malformed URL or header block).
    virtual HRESULT Navigate2(VARIANT* URL, VARIANT* Flags, VARIANT* TargetFrameName,
                              VARIANT* PostData, VARIANT* Headers) = 0;
    virtual HRESULT Stop() = 0;
    virtual HRESULT Quit() = 0;
    virtual HRESULT get_ReadyState(READYSTATE* pState) = 0;
    virtual HRESULT get_Busy(VARIANT_BOOL* pBusy) = 0;
    // The document, referenced; fails while there is none (before a reply, after a failure).
    virtual HRESULT get_Document(IDispatch** ppDocument) = 0;
    virtual HRESULT get_Offline(VARIANT_BOOL* pOffline) = 0;
    virtual HRESULT put_Offline(VARIANT_BOOL offline) = 0;
    virtual HRESULT get_LocationURL(BSTR* pUrl) = 0;
    virtual HRESULT get_Visible(VARIANT_BOOL* pVisible) = 0;
    virtual HRESULT put_Visible(VARIANT_BOOL visible) = 0;
    virtual HRESULT get_HWND(LONG_PTR* pWindow) = 0;
    virtual HRESULT get_Application(IDispatch** ppApplication) = 0;
    // Why the last navigation failed, in plain words; empty otherwise.
    virtual HRESULT get_StatusText(BSTR* pText) = 0;

protected:
    ~IWebBrowser2() = default;
};
inline constexpr const IID& IID_IWebBrowser2 = IWebBrowser2::Iid;

// What a browser of this platform knows beside IWebBrowser2, asked for by QueryInterface.
struct IPageReply : IUnknown {
    static constexpr IID Iid{
        0x5C0B2E74, 0x91D3, 0x4F6A, {0xB7, 0x2D, 0x16, 0x8E, 0x3A, 0xC4, 0x70, 0x5F}};
    // The HTTP status of the reply to the last navigation, redirects followed, also of one that is
    // not shown as a page; 0 while there is none, and for what is no HTTP (a file).
    virtual HRESULT get_Status(LONG* pStatus) = 0;

protected:
    ~IPageReply() = default;
};

// Dispatch identifiers of IWebBrowser2.
constexpr DISPID DISPID_READYSTATE = -525;
constexpr DISPID DISPID_WB_NAVIGATE = 104;
constexpr DISPID DISPID_WB_STOP = 106;
constexpr DISPID DISPID_WB_APPLICATION = 200;
constexpr DISPID DISPID_WB_DOCUMENT = 203;
constexpr DISPID DISPID_WB_LOCATIONURL = 211;
constexpr DISPID DISPID_WB_BUSY = 212;
constexpr DISPID DISPID_WB_QUIT = 300;
constexpr DISPID DISPID_WB_VISIBLE = 402;
constexpr DISPID DISPID_WB_STATUSTEXT = 404;
constexpr DISPID DISPID_WB_NAVIGATE2 = 500;
constexpr DISPID DISPID_WB_OFFLINE = 550;
constexpr DISPID DISPID_WB_HWND = -515;

// The browser's events: a dispatch interface, so a sink is any IDispatch that answers this
// identifier. Arguments arrive as the event's definition orders them, last first in rgvarg.
constexpr IID DIID_DWebBrowserEvents2{
    0x34A715A0, 0x6587, 0x11D0, {0x92, 0x4A, 0x00, 0x20, 0xAF, 0xC7, 0xAC, 0x4D}};
// pDisp, &URL, &Flags, &TargetFrameName, &PostData, &Headers (VT_BYREF|VT_VARIANT each),
// &Cancel (VT_BYREF|VT_BOOL)
constexpr DISPID DISPID_BEFORENAVIGATE2 = 250;
constexpr DISPID DISPID_NEWWINDOW2 = 251;        // &pDisp (VT_BYREF|VT_DISPATCH), &Cancel
constexpr DISPID DISPID_NAVIGATECOMPLETE2 = 252; // pDisp, &URL
constexpr DISPID DISPID_ONQUIT = 253;
constexpr DISPID DISPID_ONVISIBLE = 254;        // Visible (VT_BOOL)
constexpr DISPID DISPID_DOCUMENTCOMPLETE = 259; // pDisp, &URL
constexpr DISPID DISPID_DOWNLOADBEGIN = 106;
constexpr DISPID DISPID_DOWNLOADCOMPLETE = 104;

struct IHTMLElement : IDispatch {
    static constexpr IID Iid{
        0x3050F1FF, 0x98B5, 0x11CF, {0xBB, 0x82, 0x00, 0xAA, 0x00, 0xBD, 0xCE, 0x0B}};
    virtual HRESULT get_outerHTML(BSTR* pHtml) = 0;

protected:
    ~IHTMLElement() = default;
};

struct IHTMLDocument2 : IDispatch {
    static constexpr IID Iid{
        0x332C4425, 0x26CB, 0x11D0, {0xB4, 0x83, 0x00, 0xC0, 0x4F, 0xD9, 0x01, 0x19}};
    virtual HRESULT get_body(IHTMLElement** ppBody) = 0;

protected:
    ~IHTMLDocument2() = default;
};
inline constexpr const IID& IID_IHTMLDocument2 = IHTMLDocument2::Iid;

ZRHB_EXPORT_END
