// Options of the process's use of URLs.
#pragma once

#include "Export.h"
#include "Types.h"

ZRHB_EXPORT_BEGIN

constexpr DWORD URLMON_OPTION_USERAGENT = 0x10000001;

// URLMON_OPTION_USERAGENT: the user-agent text of the browser control's engine. *pLength gets its
// length in bytes; a NUL follows where there is room. E_OUTOFMEMORY when the buffer is too small,
// E_FAIL when the browser does not tell it; E_INVALIDARG for any other option. May start a browser
// to ask it. nReserved is 0. Any thread that may use the browser.
HRESULT UrlMkGetSessionOption(DWORD dwOption, void* pBuffer, DWORD nSize, DWORD* pLength,
                              DWORD nReserved);

ZRHB_EXPORT_END
