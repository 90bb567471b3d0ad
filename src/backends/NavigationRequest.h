// What a back-end hands to the browser when it navigates, assembled from the caller's arguments.
#pragma once

#include <platform/Browser.h>
#include <platform/String.h>

// Nothing goes into the history, nothing is read from or written to the cache.
constexpr LONG kNavigationFlags = navNoHistory | navNoReadFromCache | navNoWriteToCache;
constexpr LONG kNewWindowNavigationFlags = kNavigationFlags | navOpenInNewWindow;

class NavigationRequest {
public:
    // pPostData: nPostLen bytes or, with 0xFFFFFFFF, a NUL-terminated text; null for a GET
    // request. nConnectVersion: below 2 such a text is sent with its NUL. pszHeaders: null for the
    // content type of a URL-encoded form; sent only with POST data.
    NavigationRequest(const CString& strUrl, const void* pPostData, DWORD nPostLen,
                      const char* pszHeaders, DWORD nConnectVersion, LONG nFlags);

    HRESULT NavigateWith(IWebBrowser2& browser);

    VARIANT* Url() { return &m_url; }
    VARIANT* Flags() { return &m_flags; }
    VARIANT* TargetFrame() { return &m_targetFrame; }
    VARIANT* PostData() { return &m_postData; }
    VARIANT* Headers() { return m_hasHeaders ? &m_headers : &m_noHeaders; }

private:
    COleVariant m_url;
    COleVariant m_flags;
    COleVariant m_targetFrame;
    COleSafeArray m_postData;
    COleVariant m_headers;
    COleVariant m_noHeaders;
    bool m_hasHeaders;
};
