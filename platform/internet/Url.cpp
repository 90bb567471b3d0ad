#include <platform/Url.h>

#include "internet/CurlUrl.h"

namespace {

DWORD ServiceOfScheme(const std::string& scheme) {
    if (scheme == "http") return AFX_INET_SERVICE_HTTP;
    if (scheme == "https") return AFX_INET_SERVICE_HTTPS;
    if (scheme == "file") return AFX_INET_SERVICE_FILE;
    return AFX_INET_SERVICE_UNK;
}

} // namespace

BOOL AfxParseURL(const char* pszURL, DWORD& dwServiceType, CString& strServer, CString& strObject,
                 WORD& nPort) {
    dwServiceType = AFX_INET_SERVICE_UNK;
    strServer.Empty();
    strObject.Empty();
    nPort = 0;
    const auto url = platform::CurlUrl::Parse(pszURL ? pszURL : "");
    if (!url) return FALSE;
    dwServiceType = ServiceOfScheme(url->Scheme());
    strServer = CString(url->Host());
    strObject = CString(url->Target());
    nPort = url->Port();
    return TRUE;
}
