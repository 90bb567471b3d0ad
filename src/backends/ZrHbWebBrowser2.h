// The browser control in a framework window, as the framework's dispatch wrapper offers it.
#pragma once

#include <platform/Browser.h>
#include <platform/CWnd.h>

// Made by CreateControl. Every method is one call of the control and throws as
// CWnd::InvokeHelper does.
class CZrHbWebBrowser2 : public CWnd {
public:
    void Navigate(const char* pszUrl, VARIANT* pFlags, VARIANT* pTargetFrameName,
                  VARIANT* pPostData, VARIANT* pHeaders);
    void Stop();
    // Referenced; null while there is no document.
    IDispatch* GetDocument();
    CString GetLocationURL();
    BOOL GetBusy();
    long GetReadyState();
    BOOL GetOffline();
    void SetOffline(BOOL bOffline);
};
