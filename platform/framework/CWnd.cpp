#include <platform/CWnd.h>

#include <cstdarg>
#include <map>
#include <memory>
#include <string_view>
#include <utility>
#include <vector>

#include <platform/Exceptions.h>

namespace {

constexpr const char* kHostWindowClass = "ControlHost";
constexpr DISPID kPropertyPut = -3; // names the new value of a property

// Readable to the very end of a thread: a window object may outlive the table that lists it.
thread_local bool isTableGone = false;

// The window objects of one thread.
struct ThreadWindows {
    std::map<HWND, CWnd*> made;
    std::map<HWND, std::unique_ptr<CWnd>> temporary;
    ~ThreadWindows() { isTableGone = true; }
};

ThreadWindows& WindowsOfThisThread() {
    static thread_local ThreadWindows windows;
    return windows;
}

HWND CreateHostWindow(const char* pszWindowName, DWORD dwStyle, const RECT& rect, HWND parent) {
    AfxRegisterWindowClass(kHostWindowClass, &DefWindowProcA);
    return CreateWindowExA(0, kHostWindowClass, pszWindowName, dwStyle | WS_CHILD, rect.left,
                           rect.top, rect.right - rect.left, rect.bottom - rect.top, parent,
                           nullptr, nullptr, nullptr);
}

struct OwnedVariants {
    std::vector<VARIANT> values;
    ~OwnedVariants() {
        for (VARIANT& value : values)
            VariantClear(&value);
    }
};

// The arguments of one call, the last first as an object takes them.
class CallArguments {
public:
    CallArguments(const char* types, std::va_list list);
    CallArguments(const CallArguments&) = delete;
    CallArguments& operator=(const CallArguments&) = delete;

    DISPPARAMS Params(WORD flags) {
        DISPPARAMS params;
        params.rgvarg = m_owned.values.data();
        params.cArgs = static_cast<UINT>(m_owned.values.size());
        if (flags & DISPATCH_PROPERTYPUT) {
            params.rgdispidNamedArgs = &m_newValue;
            params.cNamedArgs = 1;
        }
        return params;
    }

private:
    OwnedVariants m_owned;
    DISPID m_newValue = kPropertyPut;
};

CallArguments::CallArguments(const char* types, std::va_list list) {
    const std::string_view all(types ? types : "");
    m_owned.values.resize(all.size());
    auto next = m_owned.values.rbegin();
    for (const char type : all) {
        VARIANT& value = *next++;
        if (type == *VTS_BSTR) {
            value.bstrVal = CComBSTR(va_arg(list, const char*)).Detach();
            value.vt = VT_BSTR;
        } else if (type == *VTS_VARIANT) {
            value.pvarVal = va_arg(list, VARIANT*);
            value.vt = VT_BYREF | VT_VARIANT;
        } else if (type == *VTS_BOOL) {
            value.boolVal = va_arg(list, BOOL) ? VARIANT_TRUE : VARIANT_FALSE;
            value.vt = VT_BOOL;
        } else {
            AfxThrowOleException(DISP_E_TYPEMISMATCH);
        }
    }
}

[[noreturn]] void ThrowFailure(HRESULT hr, const EXCEPINFO& reported) {
    if (!reported.description.IsEmpty()) AfxThrowOleDispatchException(reported.description);
    AfxThrowOleException(hr);
}

// Moves a call's result, which is of the type wanted, to where the caller wants it.
void HandOver(VARIANT& result, void* pvRet) {
    switch (result.vt) {
    case VT_DISPATCH:
        *static_cast<IDispatch**>(pvRet) = std::exchange(result.pdispVal, nullptr);
        break;
    case VT_BSTR: {
        CComBSTR text;
        *&text = std::exchange(result.bstrVal, nullptr);
        *static_cast<CString*>(pvRet) = text.ToAnsi();
        break;
    }
    case VT_BOOL:
        *static_cast<BOOL*>(pvRet) = result.boolVal != VARIANT_FALSE ? TRUE : FALSE;
        break;
    case VT_I4:
        *static_cast<long*>(pvRet) = result.lVal;
        break;
    default:
        AfxThrowOleException(DISP_E_TYPEMISMATCH);
    }
}

} // namespace

CWnd::~CWnd() {
    // A temporary object has no control, and its window is not its own.
    if (m_control) CWnd::DestroyWindow();
}

CWnd* CWnd::FromHandle(HWND hWnd) {
    if (isTableGone) return nullptr;
    ThreadWindows& windows = WindowsOfThisThread();
    const bool exists = hWnd == GetDesktopWindow() || ::IsWindow(hWnd);
    if (!exists) {
        windows.temporary.erase(hWnd);
        return nullptr;
    }
    if (const auto made = windows.made.find(hWnd); made != windows.made.end()) return made->second;
    std::unique_ptr<CWnd>& temporary = windows.temporary[hWnd];
    if (!temporary) {
        temporary = std::make_unique<CWnd>();
        temporary->m_hWnd = hWnd;
    }
    return temporary.get();
}

CWnd* CWnd::GetForegroundWindow() {
    return FromHandle(::GetForegroundWindow());
}

BOOL CWnd::IsWindowEnabled() const {
    return ::IsWindowEnabled(m_hWnd);
}

BOOL CWnd::SetForegroundWindow() {
    return ::SetForegroundWindow(m_hWnd);
}

void CWnd::BringWindowToTop() {
    ::BringWindowToTop(m_hWnd);
}

CWnd* CWnd::GetParent() const {
    return FromHandle(::GetParent(m_hWnd));
}

BOOL CWnd::CreateControl(REFCLSID clsid, const char* pszWindowName, DWORD dwStyle, const RECT& rect,
                         CWnd* pParentWnd, UINT, CFile* pPersist, BOOL bStorage, BSTR bstrLicKey) {
    if (isTableGone || m_hWnd || !pParentWnd || pPersist || bStorage || bstrLicKey) return FALSE;
    CComPtr<IDispatch> control;
    if (FAILED(CoCreateInstance(clsid, nullptr, CLSCTX_INPROC_SERVER, IID_IDispatch,
                                reinterpret_cast<void**>(&control))))
        return FALSE;
    const HWND window = CreateHostWindow(pszWindowName, dwStyle, rect, pParentWnd->m_hWnd);
    if (!window) return FALSE;
    if (FAILED(AtlAxAttachControl(control.Get(), window, nullptr))) {
        ::DestroyWindow(window);
        return FALSE;
    }
    m_hWnd = window;
    m_control = std::move(control);
    WindowsOfThisThread().made[window] = this;
    return TRUE;
}

BOOL CWnd::DestroyWindow() {
    m_control.Release();
    const HWND window = std::exchange(m_hWnd, nullptr);
    if (!window) return FALSE;
    if (!isTableGone) WindowsOfThisThread().made.erase(window);
    return ::DestroyWindow(window);
}

void CWnd::InvokeHelper(DISPID dwDispID, WORD wFlags, VARTYPE vtRet, void* pvRet,
                        const char* pbParamInfo, ...) {
    const CComPtr<IDispatch> control = m_control;
    if (!control) AfxThrowOleException(RPC_E_DISCONNECTED);
    std::va_list list;
    va_start(list, pbParamInfo);
    CallArguments arguments(pbParamInfo, list);
    va_end(list);
    DISPPARAMS params = arguments.Params(wFlags);
    COleVariant result;
    EXCEPINFO reported;
    const HRESULT hr = control->Invoke(dwDispID, IID{}, 0, wFlags, &params,
                                       vtRet == VT_EMPTY ? nullptr : &result, &reported, nullptr);
    if (FAILED(hr)) ThrowFailure(hr, reported);
    if (vtRet == VT_EMPTY) return;
    if (result.vt != vtRet) AfxThrowOleException(DISP_E_TYPEMISMATCH);
    HandOver(result, pvRet);
}
