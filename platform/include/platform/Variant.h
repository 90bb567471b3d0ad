// Wide texts, variants, byte safe arrays and dispatch interfaces.
#pragma once

#include <string>
#include <string_view>

#include "Export.h"
#include "String.h"
#include "Unknown.h"

ZRHB_EXPORT_BEGIN

using OLECHAR = char16_t;
// UTF-16 text with its length kept before it; NUL characters may be part of it. Null is the empty
// text.
using BSTR = OLECHAR*;
using VARIANT_BOOL = std::int16_t;
using VARTYPE = std::uint16_t;
constexpr VARIANT_BOOL VARIANT_TRUE = -1;
constexpr VARIANT_BOOL VARIANT_FALSE = 0;

BSTR SysAllocStringLen(const OLECHAR* pText, UINT nLength);
void SysFreeString(BSTR bstrText);
// Characters without the NUL; 0 for null.
UINT SysStringLen(BSTR bstrText);

// Owns a BSTR.
class CComBSTR {
public:
    CComBSTR() = default;
    // From ANSI text (code page 1252), NUL bytes included.
    explicit CComBSTR(std::string_view ansi);
    CComBSTR(CComBSTR&& other) noexcept : m_str(std::exchange(other.m_str, nullptr)) {}
    CComBSTR(const CComBSTR&) = delete;
    CComBSTR& operator=(const CComBSTR&) = delete;
    ~CComBSTR() { SysFreeString(m_str); }
    // For out-arguments; lets go of what was held.
    BSTR* operator&();
    BSTR Get() const { return m_str; }
    BSTR Detach() { return std::exchange(m_str, nullptr); }
    std::u16string_view View() const { return {m_str ? m_str : u"", SysStringLen(m_str)}; }
    // In the ANSI code page.
    CString ToAnsi() const;

private:
    BSTR m_str = nullptr;
};

constexpr VARTYPE VT_EMPTY = 0;
constexpr VARTYPE VT_I4 = 3;
constexpr VARTYPE VT_BSTR = 8;
constexpr VARTYPE VT_DISPATCH = 9;
constexpr VARTYPE VT_BOOL = 11;
constexpr VARTYPE VT_VARIANT = 12;
constexpr VARTYPE VT_UI1 = 17;
constexpr VARTYPE VT_ARRAY = 0x2000;
constexpr VARTYPE VT_BYREF = 0x4000;

struct SAFEARRAY; // one-dimensional, of bytes, from index 0
// Null when vt is not VT_UI1, lLbound is not 0, or memory is short.
SAFEARRAY* SafeArrayCreateVector(VARTYPE vt, LONG lLbound, ULONG nElements);
HRESULT SafeArrayDestroy(SAFEARRAY* pArray);
HRESULT SafeArrayAccessData(SAFEARRAY* pArray, void** ppData);
HRESULT SafeArrayUnaccessData(SAFEARRAY* pArray);
HRESULT SafeArrayGetUBound(SAFEARRAY* pArray, UINT nDim, LONG* pBound); // -1 when empty

struct IDispatch;

struct VARIANT {
    VARTYPE vt = VT_EMPTY;
    union {
        LONG lVal = 0;
        BSTR bstrVal;
        VARIANT_BOOL boolVal;
        IDispatch* pdispVal;
        SAFEARRAY* parray;
        VARIANT* pvarVal;       // VT_BYREF | VT_VARIANT
        VARIANT_BOOL* pboolVal; // VT_BYREF | VT_BOOL
        IDispatch** ppdispVal;  // VT_BYREF | VT_DISPATCH
    };
};
void VariantInit(VARIANT* pVariant);
// Frees text and array, releases the interface; by-reference values are left alone.
HRESULT VariantClear(VARIANT* pVariant);

// Owns its content.
class COleVariant : public VARIANT {
public:
    COleVariant() = default;
    explicit COleVariant(const CString& strText); // VT_BSTR, bytes as ANSI
    explicit COleVariant(LONG nValue);            // VT_I4
    COleVariant(const COleVariant&) = delete;
    COleVariant& operator=(const COleVariant&) = delete;
    ~COleVariant() { VariantClear(this); }
};

// Owns a byte array (VT_ARRAY | VT_UI1).
class COleSafeArray : public VARIANT {
public:
    COleSafeArray() = default;
    COleSafeArray(const COleSafeArray&) = delete;
    COleSafeArray& operator=(const COleSafeArray&) = delete;
    ~COleSafeArray() { VariantClear(this); }
    // Becomes an array of nElements bytes copied from pSource. vt must be VT_UI1. Throws
    // COleException when memory is short.
    void CreateOneDim(VARTYPE vt, DWORD nElements, const void* pSource);
};

using DISPID = std::int32_t;
constexpr WORD DISPATCH_METHOD = 1;
constexpr WORD DISPATCH_PROPERTYGET = 2;
constexpr WORD DISPATCH_PROPERTYPUT = 4;

struct DISPPARAMS {
    VARIANT* rgvarg = nullptr; // the last argument first
    DISPID* rgdispidNamedArgs = nullptr;
    UINT cArgs = 0;
    UINT cNamedArgs = 0;
};

struct EXCEPINFO {
    HRESULT scode = S_OK;
    CString description;
};

struct IDispatch : IUnknown {
    static constexpr IID Iid{0x00020400, 0, 0, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};
    virtual HRESULT Invoke(DISPID member, REFIID reserved, LCID locale, WORD flags,
                           DISPPARAMS* pParams, VARIANT* pResult, EXCEPINFO* pExceptInfo,
                           UINT* pArgErr) = 0;

protected:
    ~IDispatch() = default;
};
inline constexpr const IID& IID_IDispatch = IDispatch::Iid;

ZRHB_EXPORT_END
