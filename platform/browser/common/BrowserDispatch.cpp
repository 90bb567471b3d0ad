// The browser's members by dispatch identifier.
#include <array>

#include "browser/common/BrowserObject.h"

namespace platform {

HRESULT BrowserObject::Invoke(DISPID member, REFIID, LCID, WORD flags, DISPPARAMS* pParams,
                              VARIANT* pResult, EXCEPINFO* pExceptInfo, UINT*) {
    DISPPARAMS none;
    DISPPARAMS& params = pParams ? *pParams : none;
    HRESULT hr = DISP_E_MEMBERNOTFOUND;
    if (flags & DISPATCH_PROPERTYPUT)
        hr =
            params.cArgs == 1 ? PutProperty(member, *Dereference(&params.rgvarg[0])) : E_INVALIDARG;
    if (hr == DISP_E_MEMBERNOTFOUND && (flags & DISPATCH_METHOD)) hr = InvokeMethod(member, params);
    if (hr == DISP_E_MEMBERNOTFOUND && (flags & DISPATCH_PROPERTYGET)) {
        VARIANT unused;
        hr = GetProperty(member, pResult ? *pResult : unused);
        if (!pResult) VariantClear(&unused);
    }
    if (FAILED(hr) && pExceptInfo) {
        pExceptInfo->scode = hr;
        pExceptInfo->description = CString(m_statusText);
    }
    return hr;
}

HRESULT BrowserObject::InvokeMethod(DISPID member, DISPPARAMS& params) {
    switch (member) {
    case DISPID_WB_NAVIGATE:
    case DISPID_WB_NAVIGATE2:
        return InvokeNavigate(params);
    case DISPID_WB_STOP:
        return Stop();
    case DISPID_WB_QUIT:
        return Quit();
    default:
        return DISP_E_MEMBERNOTFOUND;
    }
}

HRESULT BrowserObject::InvokeNavigate(DISPPARAMS& params) {
    std::array<VARIANT*, 5> arguments{}; // URL, flags, target frame, post data, headers
    if (params.cArgs < 1 || params.cArgs > arguments.size()) return E_INVALIDARG;
    for (UINT index = 0; index < params.cArgs; ++index)
        arguments[index] = &params.rgvarg[params.cArgs - 1 - index];
    return Navigate2(arguments[0], arguments[1], arguments[2], arguments[3], arguments[4]);
}

HRESULT BrowserObject::PutProperty(DISPID member, const VARIANT& value) {
    if (member != DISPID_WB_VISIBLE && member != DISPID_WB_OFFLINE) return DISP_E_MEMBERNOTFOUND;
    if (value.vt != VT_BOOL) return E_INVALIDARG;
    return member == DISPID_WB_VISIBLE ? put_Visible(value.boolVal) : put_Offline(value.boolVal);
}

// For callers by identifier a failure is an exception. That there is no document is none: they are
// told by null.
HRESULT BrowserObject::DispatchDocument(IDispatch*& document) {
    const HRESULT hr = get_Document(&document);
    return hr == E_FAIL && !m_document ? S_OK : hr;
}

HRESULT BrowserObject::GetProperty(DISPID member, VARIANT& result) {
    const auto as = [&result](VARTYPE type, HRESULT hr) {
        if (SUCCEEDED(hr)) result.vt = type;
        return hr;
    };
    VariantInit(&result);
    switch (member) {
    case DISPID_READYSTATE:
        return as(VT_I4, get_ReadyState(&result.lVal));
    case DISPID_WB_BUSY:
        return as(VT_BOOL, get_Busy(&result.boolVal));
    case DISPID_WB_VISIBLE:
        return as(VT_BOOL, get_Visible(&result.boolVal));
    case DISPID_WB_OFFLINE:
        return as(VT_BOOL, get_Offline(&result.boolVal));
    case DISPID_WB_DOCUMENT:
        return as(VT_DISPATCH, DispatchDocument(result.pdispVal));
    case DISPID_WB_APPLICATION:
        return as(VT_DISPATCH, get_Application(&result.pdispVal));
    case DISPID_WB_LOCATIONURL:
        return as(VT_BSTR, get_LocationURL(&result.bstrVal));
    case DISPID_WB_STATUSTEXT:
        return as(VT_BSTR, get_StatusText(&result.bstrVal));
    case DISPID_WB_HWND: {
        LONG_PTR window = 0;
        const HRESULT hr = get_HWND(&window);
        result.lVal = static_cast<LONG>(window); // handles fit in 32 bits
        return as(VT_I4, hr);
    }
    default:
        return DISP_E_MEMBERNOTFOUND;
    }
}

} // namespace platform
