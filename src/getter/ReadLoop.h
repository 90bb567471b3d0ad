// The getter's reading: one step, and the loop that waits for a page.
#pragma once

#include <ZrHbUHttpGet.h>

#include "getter/ZrHbUHttpGet_Impl.h"

namespace ReadLoop {

// What a waiting read was asked to do; the members are the arguments of CZrHbUHttpGet::BusyRead2.
struct Request {
    const CStringArray* pTitles = nullptr;
    DWORD dwTimeout = 0;
    BOOL bLargeData = FALSE;
    DWORD dwIdleTimeout = 0;
    CZrHbUHttpGet::ReadCallback pfnCallback = nullptr;
    void* pCallbackContext = nullptr;
};

// Without waiting: asks the back-end once, watches progress, closes a page that is over.
template <class TPage>
DWORD Step(CZrHbUHttpGet_Impl& state, TPage& page, CString& strErr, DWORD& nLength, CString& strUrl,
           DWORD dwTimeout, BOOL bLargeData);

// Steps until the page is there, has failed, has been idle for too long, or the callback stops it.
template <class TPage>
DWORD Wait(CZrHbUHttpGet_Impl& state, TPage& page, CString& strErr, CString& strUrl,
           const Request& request);

extern template DWORD Step(CZrHbUHttpGet_Impl&, CString&, CString&, DWORD&, CString&, DWORD, BOOL);
extern template DWORD Step(CZrHbUHttpGet_Impl&, CByteBuffer&, CString&, DWORD&, CString&, DWORD,
                           BOOL);
extern template DWORD Wait(CZrHbUHttpGet_Impl&, CString&, CString&, CString&, const Request&);
extern template DWORD Wait(CZrHbUHttpGet_Impl&, CByteBuffer&, CString&, CString&, const Request&);

} // namespace ReadLoop
