#include "browser/common/NavigationRequest.h"

#include <platform/CodePage.h>

namespace platform {
namespace {

bool IsAbsent(const VARIANT* pValue) {
    return !pValue || pValue->vt == VT_EMPTY;
}

std::u16string_view TextOf(BSTR bstrText) {
    return {bstrText ? bstrText : u"", SysStringLen(bstrText)};
}

bool ReadBytes(const VARIANT* pValue, std::string& bytes) {
    if (IsAbsent(pValue)) return true;
    if (pValue->vt != (VT_ARRAY | VT_UI1)) return false;
    LONG bound = -1;
    void* pData = nullptr;
    if (!pValue->parray) return true;
    if (FAILED(SafeArrayGetUBound(pValue->parray, 1, &bound)) ||
        FAILED(SafeArrayAccessData(pValue->parray, &pData)))
        return false;
    if (bound >= 0)
        bytes.assign(static_cast<const char*>(pData), static_cast<std::size_t>(bound) + 1);
    SafeArrayUnaccessData(pValue->parray);
    return true;
}

bool ReadText(const VARIANT* pValue, std::string& bytes) {
    if (IsAbsent(pValue)) return true;
    if (pValue->vt != VT_BSTR) return false;
    bytes = AnsiFromWide(TextOf(pValue->bstrVal));
    return true;
}

bool ReadFlags(const VARIANT* pValue, LONG& flags) {
    if (IsAbsent(pValue)) return true;
    if (pValue->vt != VT_I4) return false;
    flags = pValue->lVal;
    return true;
}

} // namespace

const VARIANT* Dereference(const VARIANT* pValue) {
    return pValue && pValue->vt == (VT_BYREF | VT_VARIANT) ? pValue->pvarVal : pValue;
}

std::optional<NavigationRequest> ParseNavigation(const VARIANT* pUrl, const VARIANT* pFlags,
                                                 const VARIANT* pPostData, const VARIANT* pHeaders,
                                                 std::string& error) {
    pUrl = Dereference(pUrl);
    if (!pUrl || pUrl->vt != VT_BSTR) {
        error = "the URL is no text";
        return std::nullopt;
    }
    NavigationRequest request;
    if (!ReadFlags(Dereference(pFlags), request.flags) ||
        !ReadBytes(Dereference(pPostData), request.body) ||
        !ReadText(Dereference(pHeaders), request.headerBlock)) {
        error = "flags, post data or headers have the wrong type";
        return std::nullopt;
    }
    auto target = ParsePageUrl(TextOf(pUrl->bstrVal), error);
    if (!target) return std::nullopt;
    auto headers = ParseHeaderBlock(request.headerBlock, request.body.size(), error);
    if (!headers) return std::nullopt;
    request.target = std::move(*target);
    request.givenUrl = TextOf(pUrl->bstrVal);
    request.headers = std::move(*headers);
    return request;
}

HRESULT NavigateWith(IWebBrowser2& browser, const NavigationRequest& request) {
    COleVariant url;
    url.vt = VT_BSTR;
    url.bstrVal =
        SysAllocStringLen(request.givenUrl.data(), static_cast<UINT>(request.givenUrl.size()));
    COleVariant flags(request.flags & ~navOpenInNewWindow);
    COleVariant frameName;
    COleSafeArray postData;
    if (!request.body.empty())
        postData.CreateOneDim(VT_UI1, static_cast<DWORD>(request.body.size()), request.body.data());
    COleVariant headers{CString(request.headerBlock)};
    return browser.Navigate2(&url, &flags, &frameName, &postData, &headers);
}

} // namespace platform
