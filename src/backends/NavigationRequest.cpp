#include "backends/NavigationRequest.h"

#include <cstring>

#include <ZrHbResultCodes.h>

namespace {

constexpr const char* kFormContentType = "Content-Type: application/x-www-form-urlencoded";

DWORD PostLength(const void* pPostData, DWORD nPostLen, DWORD nConnectVersion) {
    if (nPostLen != ZRHB_LENGTH_OF_TEXT) return nPostLen;
    if (!pPostData) return 0;
    const auto length = static_cast<DWORD>(std::strlen(static_cast<const char*>(pPostData)));
    return nConnectVersion >= 2 ? length : length + 1;
}

CString HeaderText(const char* pszHeaders) {
    CString headers(pszHeaders ? pszHeaders : kFormContentType);
    headers.TrimRight("\r\n");
    headers += "\r\n";
    return headers;
}

} // namespace

NavigationRequest::NavigationRequest(const CString& strUrl, const void* pPostData, DWORD nPostLen,
                                     const char* pszHeaders, DWORD nConnectVersion, LONG nFlags)
    : m_url(strUrl), m_flags(nFlags), m_headers(HeaderText(pszHeaders)) {
    const DWORD length = PostLength(pPostData, nPostLen, nConnectVersion);
    m_hasHeaders = length != 0;
    if (pPostData && length > 0) m_postData.CreateOneDim(VT_UI1, length, pPostData);
}

HRESULT NavigationRequest::NavigateWith(IWebBrowser2& browser) {
    return browser.Navigate2(Url(), Flags(), TargetFrame(), PostData(), Headers());
}
