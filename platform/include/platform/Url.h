// Taking URLs apart (RFC 3986).
#pragma once

#include "Export.h"
#include "String.h"

ZRHB_EXPORT_BEGIN

constexpr DWORD AFX_INET_SERVICE_HTTP = 3;
constexpr DWORD AFX_INET_SERVICE_UNK = 0x1000;
constexpr DWORD AFX_INET_SERVICE_FILE = 0x1001;
constexpr DWORD AFX_INET_SERVICE_HTTPS = 0x100B;

// Service type, host name (no user information, no port), path with query, and port (the scheme's
// own when the URL names none). FALSE, with empty parts, when the text is no absolute URL.
BOOL AfxParseURL(const char* pszURL, DWORD& dwServiceType, CString& strServer, CString& strObject,
                 WORD& nPort);

ZRHB_EXPORT_END
