// The contract between the getter and a browser back-end.
#pragma once

#include <ByteBuffer.h>
#include <platform/Browser.h>
#include <platform/String.h>

// Created unconnected; connected means that it holds its browser. One thread, the getter's.
// Every operation on an unconnected back-end answers with the not-connected result or does
// nothing. Codes and texts are those of ZrHbResultCodes.h and BackendTexts.h.
class CZrHbHttpGet {
public:
    virtual ~CZrHbHttpGet() = default;
    // Disconnects first. 0 with an empty strErr only when it holds its browser; 20 or 23.
    virtual DWORD Connect(HWND hWndParent, CString& strErr) = 0;
    // Starts a navigation and returns without waiting for the page. strErr is left alone on
    // success.
    virtual DWORD Open(const CString& strUrl, CString& strErr, const void* pPostData,
                       DWORD nPostLen, const char* pszHeaders, BOOL bKeepPageOpen) = 0;
    // Never waits. nLength is 0 unless there is source.
    virtual DWORD Read(CByteBuffer& page, CString& strErr, DWORD& nLength, CString& strUrl) = 0;
    virtual DWORD Read(CString& page, CString& strErr, DWORD& nLength, CString& strUrl) = 0;
    // Stops the navigation; the connection stands.
    virtual void Close() = 0;
    // Closes and releases the browser.
    virtual void Disconnect() = 0;
    // The next Open is for a new window.
    virtual void PrepareOpenInNewWindow() = 0;
    virtual void PutVisible(BOOL bVisible) = 0;
    virtual void KeepThisFrameOpen() = 0;
    // Not referenced; null with a text.
    virtual IWebBrowser2* Get_IWebBrowser2_ptr(CString& strErr) = 0;

protected:
    CZrHbHttpGet() = default;
    CZrHbHttpGet(const CZrHbHttpGet&) = delete;
    CZrHbHttpGet& operator=(const CZrHbHttpGet&) = delete;
};
