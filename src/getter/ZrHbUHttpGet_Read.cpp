// The getter: the family of read calls over the step and the waiting loop.

#include <ZrHbUHttpGet.h>

#include "getter/PageFile.h"
#include "getter/ReadLoop.h"
#include "siblings/ZrCbFileSystem.h"

using ReadLoop::Request;

namespace {

constexpr DWORD kDefaultIdleTimeout = 15000; // ms

template <class TPage>
DWORD TestReadInto(CZrHbUHttpGet_Impl* state, TPage& page, CString& strErr, DWORD& nLength,
                   CString& strUrl, DWORD dwTimeout, BOOL bLargeData) {
    if (!state) return ZRHB_NO_OPEN_PAGE;
    return ReadLoop::Step(*state, page, strErr, nLength, strUrl, dwTimeout, bLargeData);
}

template <class TPage>
DWORD BusyReadInto(CZrHbUHttpGet_Impl* state, TPage& page, CString& strErr, CString& strUrl,
                   const Request& request) {
    return state ? ReadLoop::Wait(*state, page, strErr, strUrl, request) : ZRHB_STOPPED;
}

template <class TPage>
DWORD BusyReadInto(CZrHbUHttpGet_Impl* state, TPage& page, CString& strErr,
                   const Request& request) {
    CString strUrl;
    return BusyReadInto(state, page, strErr, strUrl, request);
}

DWORD Save(const CString& strFileName, const CString& page, CString& strErr) {
    if (SavePage(strFileName, page)) return ZRHB_OK;
    strErr.Format("Failed to write to file '%s'.", strFileName.GetString());
    return ZRHB_SAVE_FAILED;
}

} // namespace

DWORD CZrHbUHttpGet::TestRead(CString& page, CString& strErr, DWORD& nLength, CString& strUrl,
                              DWORD dwTimeout, BOOL bLargeData) {
    return TestReadInto(GetImpl(), page, strErr, nLength, strUrl, dwTimeout, bLargeData);
}

DWORD CZrHbUHttpGet::TestRead(CByteBuffer& page, CString& strErr, DWORD& nLength, CString& strUrl,
                              DWORD dwTimeout, BOOL bLargeData) {
    return TestReadInto(GetImpl(), page, strErr, nLength, strUrl, dwTimeout, bLargeData);
}

DWORD CZrHbUHttpGet::TestRead(CString& page, CString& strErr, DWORD& nLength, DWORD dwTimeout,
                              BOOL bLargeData) {
    CString strUrl;
    return TestRead(page, strErr, nLength, strUrl, dwTimeout, bLargeData);
}

DWORD CZrHbUHttpGet::BusyRead2(CString& page, CString& strErr, CString& strUrl,
                               const CStringArray* pTitles, DWORD dwTimeout, BOOL bLargeData,
                               DWORD dwIdleTimeout, ReadCallback pfnCallback,
                               void* pCallbackContext) {
    return BusyReadInto(
        GetImpl(), page, strErr, strUrl,
        {pTitles, dwTimeout, bLargeData, dwIdleTimeout, pfnCallback, pCallbackContext});
}

DWORD CZrHbUHttpGet::BusyRead2(CByteBuffer& page, CString& strErr, CString& strUrl,
                               const CStringArray* pTitles, DWORD dwTimeout, BOOL bLargeData,
                               DWORD dwIdleTimeout, ReadCallback pfnCallback,
                               void* pCallbackContext) {
    return BusyReadInto(
        GetImpl(), page, strErr, strUrl,
        {pTitles, dwTimeout, bLargeData, dwIdleTimeout, pfnCallback, pCallbackContext});
}

DWORD CZrHbUHttpGet::BusyRead(CString& page, CString& strErr, CString& strUrl, DWORD dwTimeout,
                              BOOL bLargeData, DWORD dwIdleTimeout, ReadCallback pfnCallback,
                              void* pCallbackContext) {
    return BusyRead2(page, strErr, strUrl, nullptr, dwTimeout, bLargeData, dwIdleTimeout,
                     pfnCallback, pCallbackContext);
}

DWORD CZrHbUHttpGet::BusyRead(CByteBuffer& page, CString& strErr, CString& strUrl, DWORD dwTimeout,
                              BOOL bLargeData, DWORD dwIdleTimeout, ReadCallback pfnCallback,
                              void* pCallbackContext) {
    return BusyRead2(page, strErr, strUrl, nullptr, dwTimeout, bLargeData, dwIdleTimeout,
                     pfnCallback, pCallbackContext);
}

DWORD CZrHbUHttpGet::BusyRead2(CString& page, CString& strErr, const CStringArray* pTitles,
                               DWORD dwTimeout, BOOL bLargeData, ReadCallback pfnCallback,
                               void* pCallbackContext) {
    return BusyReadInto(
        GetImpl(), page, strErr,
        {pTitles, dwTimeout, bLargeData, kDefaultIdleTimeout, pfnCallback, pCallbackContext});
}

DWORD CZrHbUHttpGet::BusyRead2(CByteBuffer& page, CString& strErr, const CStringArray* pTitles,
                               DWORD dwTimeout, BOOL bLargeData, ReadCallback pfnCallback,
                               void* pCallbackContext) {
    return BusyReadInto(
        GetImpl(), page, strErr,
        {pTitles, dwTimeout, bLargeData, kDefaultIdleTimeout, pfnCallback, pCallbackContext});
}

DWORD CZrHbUHttpGet::BusyRead(CString& page, CString& strErr, DWORD dwTimeout, BOOL bLargeData,
                              ReadCallback pfnCallback, void* pCallbackContext) {
    return BusyRead2(page, strErr, nullptr, dwTimeout, bLargeData, pfnCallback, pCallbackContext);
}

DWORD CZrHbUHttpGet::BusyRead(CByteBuffer& page, CString& strErr, DWORD dwTimeout, BOOL bLargeData,
                              ReadCallback pfnCallback, void* pCallbackContext) {
    return BusyRead2(page, strErr, nullptr, dwTimeout, bLargeData, pfnCallback, pCallbackContext);
}

DWORD CZrHbUHttpGet::BusyRead2(CStringArray& pages, CString& strErr, CStringArray& urls,
                               const CStringArray* pTitles, DWORD dwTimeout, BOOL bLargeData,
                               DWORD dwIdleTimeout, ReadCallback pfnCallback,
                               void* pCallbackContext) {
    pages.RemoveAll();
    strErr.Empty();
    urls.RemoveAll();
    for (;;) {
        CString page;
        CString strUrl;
        const DWORD result = BusyRead2(page, strErr, strUrl, pTitles, dwTimeout, bLargeData,
                                       dwIdleTimeout, pfnCallback, pCallbackContext);
        if (result != ZRHB_OK) return result;
        pages.Add(page);
        urls.Add(strUrl);
    }
}

DWORD CZrHbUHttpGet::BusyRead(CStringArray& pages, CString& strErr, CStringArray& urls,
                              DWORD dwTimeout, BOOL bLargeData, DWORD dwIdleTimeout,
                              ReadCallback pfnCallback, void* pCallbackContext) {
    return BusyRead2(pages, strErr, urls, nullptr, dwTimeout, bLargeData, dwIdleTimeout,
                     pfnCallback, pCallbackContext);
}

DWORD CZrHbUHttpGet::TestReadSave(const CString& strFileName, CString& strErr, DWORD& nLength,
                                  DWORD dwTimeout, BOOL) {
    if (!GetImpl()) return ZRHB_STOPPED;
    if (std::exchange(GetImpl()->isSaveFilePending, false))
        CZrCbFileSystem::DeleteFileSafely(strFileName);
    CString page;
    const DWORD result = TestRead(page, strErr, nLength, dwTimeout, TRUE);
    return result == ZRHB_OK ? Save(strFileName, page, strErr) : result;
}

DWORD CZrHbUHttpGet::BusyReadSave(const CString& strFileName, CString& strErr, DWORD dwTimeout,
                                  BOOL bLargeData, ReadCallback pfnCallback,
                                  void* pCallbackContext) {
    if (!GetImpl()) return ZRHB_STOPPED;
    CZrCbFileSystem::DeleteFileSafely(strFileName);
    CString page;
    const DWORD result =
        BusyRead(page, strErr, dwTimeout, bLargeData, pfnCallback, pCallbackContext);
    return result == ZRHB_OK ? Save(strFileName, page, strErr) : result;
}
