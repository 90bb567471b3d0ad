#include "getter/ZrHbUHttpGet_Impl.h"

#include <algorithm>

namespace {

constexpr DWORD kBitsPerByteOnTheLine = 10;

} // namespace

void CZrHbUHttpGet_Impl::StartReadClocks() {
    timeOfLastProgress = CTime::GetCurrentTime();
    nLastLength = 0;
    idleStart = CTime::GetCurrentTime();
    longestIdle = CTimeSpan();
    isIdle = false;
}

void CZrHbUHttpGet_Impl::NoteProgress(DWORD nLength) {
    if (nLength <= nLastLength) return;
    timeOfLastProgress = CTime::GetCurrentTime();
    nLastLength = nLength;
}

DWORD CZrHbUHttpGet_Impl::EffectiveTimeout(DWORD dwTimeout, BOOL bLargeData) const {
    if (dwTimeout == 0 || !bLargeData) return dwTimeout;
    const DWORD baud = std::max(nBaudForLargeData, kBitsPerByteOnTheLine);
    const DWORD seconds = nPostLength / (baud / kBitsPerByteOnTheLine) + nOffsetForLargeDataSeconds;
    return std::max(dwTimeout, seconds * 1000);
}

bool CZrHbUHttpGet_Impl::IsTimedOut(DWORD dwTimeout) const {
    return dwTimeout != 0 &&
           CTime::GetCurrentTime() > timeOfLastProgress + CTimeSpan(dwTimeout / 1000);
}

CString CZrHbUHttpGet_Impl::Location() {
    CString strErr;
    IWebBrowser2* browser = backend ? backend->Get_IWebBrowser2_ptr(strErr) : nullptr;
    if (!browser) return strLastUrl;
    CComBSTR location;
    return SUCCEEDED(browser->get_LocationURL(&location)) ? location.ToAnsi() : CString();
}

void CZrHbUHttpGet_Impl::Close() {
    specialContentType.Restore();
    if (backend) backend->Close();
    isPageOpen = false;
}
