// The page getter: fetches and submits web pages by remote-controlling a browser.
//
//     CZrHbUHttpGet getter(eAppGroup_2);
//     CString err, page, url;
//     if (getter.ConnectV2(nullptr, err, CZrHbUHttpGet::eVisible,
//                          CZrHbUHttpGet::eConnectWith_InternetExplorer, 0, "") == 0 &&
//         getter.Open("https://www.example.test/", err, FALSE) == 0 &&
//         getter.BusyRead(page, err, url, 30000, FALSE, 15000, nullptr, nullptr) == 0)
//         puts(page);
//
// A getter belongs to the thread that constructed it; all calls, and all that it calls back, are
// on that thread, whose window messages it serves while it waits. Result codes are those of
// ZrHbResultCodes.h; a non-zero code comes with a text in the error-text argument unless said
// otherwise. An assigned or copied getter takes over every setting and value but the browser: the
// copy is not connected.
#pragma once

#include "ByteBuffer.h"
#include "ZrAbAppGroup.h"
#include "ZrHbFacade.h"
#include "ZrHbResultCodes.h"
#include "platform/Browser.h"
#include "platform/Export.h"
#include "platform/String.h"
#include "platform/Time.h"

class CZrHbUHttpGet_Impl;

ZRHB_EXPORT_BEGIN

class CZrHbUHttpGet : public CZrHbFacade<CZrHbUHttpGet, CZrHbUHttpGet_Impl> {
public:
    enum EZrHbInterfaceVariant {
        eInvisible = 0, // the browser control hosted in a hidden framework window
        eVisible = 1,   // a browser that can be shown
    };
    enum EZrHbConnectWith { eConnectWith_InternetExplorer = 2 };

    // Asked once a pass while a read waits. pContext: the caller's, unchanged. nLength: bytes of
    // the page that the last step saw. 0 goes on waiting, anything else stops the read with 28.
    using ReadCallback = int (*)(void* pContext, unsigned long nLength);

    // Reads the security pause (milliseconds, section "Timeout", key "OpenTimeout", default 1000)
    // from "ZrHbHttpGet.cci" in the group's settings directory or, for group 2 without that file,
    // from "HttpGet.ini" in the static data directory of module 2.
    explicit CZrHbUHttpGet(EZrAbAppGroup eGroup);
    CZrHbUHttpGet(const CZrHbUHttpGet& other);
    CZrHbUHttpGet& operator=(const CZrHbUHttpGet& other);
    // Closes the page and disconnects.
    ~CZrHbUHttpGet() override;

    // --- Connecting -------------------------------------------------------------------------

    // Attaches a browser; a connection that stands is closed first. hWndParent: parent of the
    // hidden control of eInvisible, otherwise unused. nTraceFlag, strTraceText, eConnectWith: go
    // into the trace records only. Results: 0; 20 "Internal error: No valid browser instance" or
    // "Internal error: Connecting browser instance failed"; 23 when an exception ended it.
    //
    // This is the first generation: a POST text whose length the getter takes goes out with its
    // terminating NUL, which a server finds behind the last field. Use ConnectV2 or ConnectV3,
    // unless a server counts on that NUL.
    DWORD Connect(HWND hWndParent, CString& strErr, EZrHbInterfaceVariant eVariant,
                  EZrHbConnectWith eConnectWith, int nTraceFlag, const CString& strTraceText);
    // As Connect, in the second generation: from now on, also after a later Connect, POST texts
    // whose length the getter takes are sent without their terminating NUL.
    DWORD ConnectV2(HWND hWndParent, CString& strErr, EZrHbInterfaceVariant eVariant,
                    EZrHbConnectWith eConnectWith, int nTraceFlag, const CString& strTraceText);
    // As ConnectV2, with the choice of the browser: in the caller's process when strServerUrl is
    // empty, bForceInProcessOnVista or bInProcess is 1, or the server opens in protected mode; out
    // of process otherwise.
    DWORD ConnectV3(HWND hWndParent, CString& strErr, EZrHbInterfaceVariant eVariant,
                    EZrHbConnectWith eConnectWith, int nTraceFlag, const CString& strTraceText,
                    const CString& strServerUrl, int bForceInProcessOnVista, int bInProcess);
    // As ConnectV3, without switching to the second generation: see Connect.
    DWORD ConnectRefact(HWND hWndParent, CString& strErr, EZrHbInterfaceVariant eVariant,
                        EZrHbConnectWith eConnectWith, int nTraceFlag, const CString& strTraceText,
                        const CString& strServerUrl, int bForceInProcessOnVista, int bInProcess);
    // TRUE while a browser is attached, also after a connect that failed to reach it.
    BOOL IsConnected();
    EZrHbConnectWith IsConnectedWith();
    // Closes the page and releases the browser. dwWaitMs: milliseconds to serve messages after it,
    // for connections that need it (none does at present).
    void Disconnect(DWORD dwWaitMs);

    // --- The browser ------------------------------------------------------------------------

    // The browser's top window, or null.
    HWND GetWindow();
    void PutVisible(BOOL bVisible);
    // Disconnect leaves the browser application running.
    void KeepThisFrameOpen();
    // The browser; not referenced, not to be released. Null with "Get_IWebBrowser2_ptr failed
    // because: not connected." or the back-end's text.
    IWebBrowser2* Get_IWebBrowser2_ptr();
    IWebBrowser2* Get_IWebBrowser2_ptr(CString& strErr);
    // Dispatches every message that waits in the calling thread's queue; never waits.
    static void HandleWinMessageQueue();

    // --- Settings ---------------------------------------------------------------------------

    // Pause in milliseconds before every Open with POST data but the first.
    void SetSecurityTimeout(DWORD dwMilliseconds);
    // Line speed in bits per second that the large-data time-out assumes (default 12000; below 10
    // counts as 10).
    void SetBaudForCalcLargeDataTimeout(DWORD dwBaud);
    // Seconds that the large-data time-out adds (default 30).
    void SetOffsetForCalcLargeDataTimeout_sec(DWORD dwSeconds);
    // The longest time, since the last Open, that the browser was loaded and idle.
    CTimeSpan GetLastMaxIdleTimeEncountered();

    // --- Opening pages ----------------------------------------------------------------------

    // Starts loading a page and returns at once; read it with the calls below. An open page is
    // closed first. bKeepPageOpen: a complete read does not close the page. Results: 0; 21 without
    // a connection; 23 when the browser cannot navigate (its status text tells why); 27.
    // This form: a GET request.
    DWORD Open(const CString& strUrl, CString& strErr, BOOL bKeepPageOpen);
    // A POST request with a text (up to its first NUL), also an empty one. pszHeaders: header
    // lines separated by CR LF, or null for "Content-Type: application/x-www-form-urlencoded".
    // They are sent only with POST data. The text is followed by a NUL byte in the request unless
    // the getter has connected by ConnectV2 or ConnectV3.
    DWORD Open(const CString& strUrl, CString& strErr, const CString& strPostData,
               const char* pszHeaders, BOOL bKeepPageOpen);
    // pPostData: nPostLen bytes, or a NUL-terminated text with nPostLen 0xFFFFFFFF; null for a GET
    // request. Blocks for the security pause before a repeated POST.
    DWORD Open(const CString& strUrl, CString& strErr, void* const pPostData, DWORD nPostLen,
               const char* pszHeaders, BOOL bKeepPageOpen);
    // Stops loading, ends a content-type substitution.
    void Close();

    // As the Open forms, with bKeepPageOpen FALSE, in a new window of the browser.
    // 28 without a state object.
    DWORD OpenInNewWindow(const CString& strUrl, CString& strErr);
    DWORD OpenInNewWindow(const CString& strUrl, CString& strErr, const CString& strPostData,
                          const char* pszHeaders);
    DWORD OpenInNewWindow(const CString& strUrl, CString& strErr, void* const pPostData,
                          DWORD nPostLen, const char* pszHeaders);

    // Until the next Close the browser shows replies of this MIME type as plain text, so that they
    // can be read. Call it before the Open. The user's MIME database is changed meanwhile.
    void DoNextOpenForSpecialContentType(const CString& strContentType);

    // --- Reading pages ----------------------------------------------------------------------
    //
    // page: the source, as bytes or as text. As text, collected and saved pages too, it loses what
    // follows a NUL in a block of 4096 bytes; from the browser control in the program (eVisible)
    // it has every byte, NULs too, like the byte forms. strUrl: the location of the page read.
    // dwTimeout: milliseconds without growth of the page after which the read fails with 24 (0:
    // none; compared in whole seconds). bLargeData: lengthens dwTimeout by the time the posted data
    // needs. dwIdleTimeout: milliseconds that the browser may stay loaded and idle before 29 (0:
    // none; 15000 where it is no argument). pTitles: window titles; a window that comes up with one
    // of them is brought to the front once.

    // One step, without waiting: 0 with the page, 10 still loading, 11 loaded and idle, 22, 24, 25,
    // 27. nLength: bytes so far.
    DWORD TestRead(CString& page, CString& strErr, DWORD& nLength, CString& strUrl, DWORD dwTimeout,
                   BOOL bLargeData);
    DWORD TestRead(CByteBuffer& page, CString& strErr, DWORD& nLength, CString& strUrl,
                   DWORD dwTimeout, BOOL bLargeData);
    DWORD TestRead(CString& page, CString& strErr, DWORD& nLength, DWORD dwTimeout,
                   BOOL bLargeData);

    // Waits for the page: steps until it is there or has failed, or 28 or 29.
    DWORD BusyRead2(CString& page, CString& strErr, CString& strUrl, const CStringArray* pTitles,
                    DWORD dwTimeout, BOOL bLargeData, DWORD dwIdleTimeout, ReadCallback pfnCallback,
                    void* pCallbackContext);
    DWORD BusyRead2(CByteBuffer& page, CString& strErr, CString& strUrl,
                    const CStringArray* pTitles, DWORD dwTimeout, BOOL bLargeData,
                    DWORD dwIdleTimeout, ReadCallback pfnCallback, void* pCallbackContext);
    DWORD BusyRead(CString& page, CString& strErr, CString& strUrl, DWORD dwTimeout,
                   BOOL bLargeData, DWORD dwIdleTimeout, ReadCallback pfnCallback,
                   void* pCallbackContext);
    DWORD BusyRead(CByteBuffer& page, CString& strErr, CString& strUrl, DWORD dwTimeout,
                   BOOL bLargeData, DWORD dwIdleTimeout, ReadCallback pfnCallback,
                   void* pCallbackContext);
    DWORD BusyRead2(CString& page, CString& strErr, const CStringArray* pTitles, DWORD dwTimeout,
                    BOOL bLargeData, ReadCallback pfnCallback, void* pCallbackContext);
    DWORD BusyRead2(CByteBuffer& page, CString& strErr, const CStringArray* pTitles,
                    DWORD dwTimeout, BOOL bLargeData, ReadCallback pfnCallback,
                    void* pCallbackContext);
    DWORD BusyRead(CString& page, CString& strErr, DWORD dwTimeout, BOOL bLargeData,
                   ReadCallback pfnCallback, void* pCallbackContext);
    DWORD BusyRead(CByteBuffer& page, CString& strErr, DWORD dwTimeout, BOOL bLargeData,
                   ReadCallback pfnCallback, void* pCallbackContext);

    // Collects pages until a read fails, and returns that code; for pages opened with
    // bKeepPageOpen on a browser that hands out every document (29 then ends a whole collection).
    DWORD BusyRead2(CStringArray& pages, CString& strErr, CStringArray& urls,
                    const CStringArray* pTitles, DWORD dwTimeout, BOOL bLargeData,
                    DWORD dwIdleTimeout, ReadCallback pfnCallback, void* pCallbackContext);
    DWORD BusyRead(CStringArray& pages, CString& strErr, CStringArray& urls, DWORD dwTimeout,
                   BOOL bLargeData, DWORD dwIdleTimeout, ReadCallback pfnCallback,
                   void* pCallbackContext);

    // A step whose page is written to a file with CR LF line ends; the file is deleted before, once
    // an Open. 26 "Failed to write to file '%s'."; no partial file stays behind. bUnused has no
    // effect.
    DWORD TestReadSave(const CString& strFileName, CString& strErr, DWORD& nLength, DWORD dwTimeout,
                       BOOL bUnused);
    // A waiting read whose page is written to a file as above; the file is deleted before.
    DWORD BusyReadSave(const CString& strFileName, CString& strErr, DWORD dwTimeout,
                       BOOL bLargeData, ReadCallback pfnCallback, void* pCallbackContext);

private:
    friend CZrHbFacade;
    static void DestroyImpl(CZrHbUHttpGet_Impl* pImpl);
    BOOL MAPI_IEIsProtectedModeURL(const CString& strUrl);
};

ZRHB_EXPORT_END
