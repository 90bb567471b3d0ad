#include <algorithm>
#include <memory>
#include <vector>

#include <platform/Exceptions.h>
#include <platform/Variant.h>

struct SAFEARRAY {
    std::vector<BYTE> bytes;
};

SAFEARRAY* SafeArrayCreateVector(VARTYPE vt, LONG lLbound, ULONG nElements) {
    if (vt != VT_UI1 || lLbound != 0) return nullptr;
    try {
        auto array = std::make_unique<SAFEARRAY>();
        array->bytes.resize(nElements);
        return array.release();
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}

HRESULT SafeArrayDestroy(SAFEARRAY* pArray) {
    const std::unique_ptr<SAFEARRAY> owned(pArray);
    return S_OK;
}

HRESULT SafeArrayAccessData(SAFEARRAY* pArray, void** ppData) {
    if (!pArray || !ppData) return E_INVALIDARG;
    *ppData = pArray->bytes.data();
    return S_OK;
}

HRESULT SafeArrayUnaccessData(SAFEARRAY* pArray) {
    return pArray ? S_OK : E_INVALIDARG;
}

HRESULT SafeArrayGetUBound(SAFEARRAY* pArray, UINT nDim, LONG* pBound) {
    if (!pArray || nDim != 1 || !pBound) return E_INVALIDARG;
    *pBound = static_cast<LONG>(pArray->bytes.size()) - 1;
    return S_OK;
}

void VariantInit(VARIANT* pVariant) {
    *pVariant = VARIANT{};
}

HRESULT VariantClear(VARIANT* pVariant) {
    if (pVariant->vt == VT_BSTR) SysFreeString(pVariant->bstrVal);
    if (pVariant->vt == VT_DISPATCH && pVariant->pdispVal) pVariant->pdispVal->Release();
    if (pVariant->vt == (VT_ARRAY | VT_UI1)) SafeArrayDestroy(pVariant->parray);
    VariantInit(pVariant);
    return S_OK;
}

COleVariant::COleVariant(const CString& strText) {
    vt = VT_BSTR;
    bstrVal = CComBSTR(strText.View()).Detach();
}

COleVariant::COleVariant(LONG nValue) {
    vt = VT_I4;
    lVal = nValue;
}

void COleSafeArray::CreateOneDim(VARTYPE elementType, DWORD nElements, const void* pSource) {
    VariantClear(this);
    SAFEARRAY* array = SafeArrayCreateVector(elementType, 0, nElements);
    if (!array) AfxThrowOleException(E_OUTOFMEMORY);
    const auto* bytes = static_cast<const BYTE*>(pSource);
    std::copy_n(bytes, nElements, array->bytes.begin());
    vt = VT_ARRAY | VT_UI1;
    parray = array;
}
