// The scripted browser by dispatch identifier.
#include "support/ScriptedBrowser.h"

namespace test_support {

HRESULT ScriptedBrowser::Invoke(DISPID member, REFIID, LCID, WORD flags, DISPPARAMS* pParams,
                                VARIANT* pResult, EXCEPINFO* pExceptInfo, UINT*) {
    HRESULT hr = DISP_E_MEMBERNOTFOUND;
    if (flags == DISPATCH_METHOD && member == DISPID_WB_NAVIGATE) hr = InvokeNavigate(*pParams);
    if (flags == DISPATCH_METHOD && member == DISPID_WB_STOP) hr = Stop();
    if (flags == DISPATCH_PROPERTYPUT && member == DISPID_WB_OFFLINE) hr = PutOffline(*pParams);
    if (flags == DISPATCH_PROPERTYGET && pResult) hr = GetProperty(member, *pResult);
    if (FAILED(hr)) pExceptInfo->description = CString(failureText);
    return hr;
}

// The URL comes as text, everything else as a reference to a variant; the last comes first.
HRESULT ScriptedBrowser::InvokeNavigate(const DISPPARAMS& params) {
    if (params.cArgs != 5 || params.cNamedArgs != 0) return DISP_E_BADPARAMCOUNT;
    for (UINT index = 0; index < 4; ++index)
        if (params.rgvarg[index].vt != (VT_BYREF | VT_VARIANT)) return DISP_E_TYPEMISMATCH;
    if (params.rgvarg[4].vt != VT_BSTR) return DISP_E_TYPEMISMATCH;
    return Navigate2(&params.rgvarg[4], params.rgvarg[3].pvarVal, params.rgvarg[2].pvarVal,
                     params.rgvarg[1].pvarVal, params.rgvarg[0].pvarVal);
}

HRESULT ScriptedBrowser::PutOffline(const DISPPARAMS& params) {
    constexpr DISPID kNewValue = -3;
    const bool isPut = params.cArgs == 1 && params.cNamedArgs == 1 &&
                       params.rgdispidNamedArgs[0] == kNewValue && params.rgvarg[0].vt == VT_BOOL;
    if (!isPut) return DISP_E_BADPARAMCOUNT;
    isOffline = params.rgvarg[0].boolVal != VARIANT_FALSE;
    return put_Offline(params.rgvarg[0].boolVal);
}

HRESULT ScriptedBrowser::GetProperty(DISPID member, VARIANT& result) {
    const auto as = [&](VARTYPE type, HRESULT hr) {
        if (SUCCEEDED(hr)) result.vt = type;
        return hr;
    };
    switch (member) {
    case DISPID_READYSTATE:
        return as(VT_I4, get_ReadyState(&result.lVal));
    case DISPID_WB_BUSY:
        return as(VT_BOOL, get_Busy(&result.boolVal));
    case DISPID_WB_OFFLINE:
        return as(VT_BOOL, get_Offline(&result.boolVal));
    case DISPID_WB_LOCATIONURL:
        return as(VT_BSTR, get_LocationURL(&result.bstrVal));
    case DISPID_WB_DOCUMENT:
        // No document is no failure here.
        return as(VT_DISPATCH, document ? get_Document(&result.pdispVal) : S_OK);
    default:
        return DISP_E_MEMBERNOTFOUND;
    }
}

} // namespace test_support
