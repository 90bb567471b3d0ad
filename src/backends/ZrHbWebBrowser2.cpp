#include "backends/ZrHbWebBrowser2.h"

void CZrHbWebBrowser2::Navigate(const char* pszUrl, VARIANT* pFlags, VARIANT* pTargetFrameName,
                                VARIANT* pPostData, VARIANT* pHeaders) {
    InvokeHelper(DISPID_WB_NAVIGATE, DISPATCH_METHOD, VT_EMPTY, nullptr,
                 VTS_BSTR VTS_VARIANT VTS_VARIANT VTS_VARIANT VTS_VARIANT, pszUrl, pFlags,
                 pTargetFrameName, pPostData, pHeaders);
}

void CZrHbWebBrowser2::Stop() {
    InvokeHelper(DISPID_WB_STOP, DISPATCH_METHOD, VT_EMPTY, nullptr, nullptr);
}

IDispatch* CZrHbWebBrowser2::GetDocument() {
    IDispatch* document = nullptr;
    InvokeHelper(DISPID_WB_DOCUMENT, DISPATCH_PROPERTYGET, VT_DISPATCH, &document, nullptr);
    return document;
}

CString CZrHbWebBrowser2::GetLocationURL() {
    CString strUrl;
    InvokeHelper(DISPID_WB_LOCATIONURL, DISPATCH_PROPERTYGET, VT_BSTR, &strUrl, nullptr);
    return strUrl;
}

BOOL CZrHbWebBrowser2::GetBusy() {
    BOOL isBusy = FALSE;
    InvokeHelper(DISPID_WB_BUSY, DISPATCH_PROPERTYGET, VT_BOOL, &isBusy, nullptr);
    return isBusy;
}

long CZrHbWebBrowser2::GetReadyState() {
    long readyState = READYSTATE_UNINITIALIZED;
    InvokeHelper(DISPID_READYSTATE, DISPATCH_PROPERTYGET, VT_I4, &readyState, nullptr);
    return readyState;
}

BOOL CZrHbWebBrowser2::GetOffline() {
    BOOL isOffline = FALSE;
    InvokeHelper(DISPID_WB_OFFLINE, DISPATCH_PROPERTYGET, VT_BOOL, &isOffline, nullptr);
    return isOffline;
}

void CZrHbWebBrowser2::SetOffline(BOOL bOffline) {
    InvokeHelper(DISPID_WB_OFFLINE, DISPATCH_PROPERTYPUT, VT_EMPTY, nullptr, VTS_BOOL, bOffline);
}
