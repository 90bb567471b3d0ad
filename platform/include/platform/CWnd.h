// Framework window objects: a window's operations, and the hosting of automation controls.
#pragma once

#include "Automation.h"
#include "Export.h"
#include "Window.h"

ZRHB_EXPORT_BEGIN

struct RECT {
    LONG left = 0;
    LONG top = 0;
    LONG right = 0;
    LONG bottom = 0;
};

// Types of InvokeHelper's parameters, as they appear in pbParamInfo.
#define VTS_BSTR "\x0E"    // const char*, in the ANSI code page
#define VTS_VARIANT "\x0C" // const VARIANT*
#define VTS_BOOL "\x0B"    // BOOL

class CFile;

// Belongs to the thread that uses it.
class CWnd {
public:
    CWnd() = default;
    CWnd(const CWnd&) = delete;
    CWnd& operator=(const CWnd&) = delete;
    // Destroys the window that CreateControl has made.
    virtual ~CWnd();

    // The framework's object for a window: the one that made it, else a temporary one that lasts
    // until the calling thread ends or the window is gone and somebody asks again. Null when there
    // is no such window.
    static CWnd* FromHandle(HWND hWnd);
    static CWnd* GetForegroundWindow();

    HWND GetSafeHwnd() const { return m_hWnd; }
    BOOL IsWindowEnabled() const;
    BOOL SetForegroundWindow();
    void BringWindowToTop();
    CWnd* GetParent() const;

    // Makes a child window of pParentWnd with a control of the class in it (made with
    // CoCreateInstance, in process). The window's name is for the control; pPersist, bStorage and
    // bstrLicKey must be null or FALSE. FALSE when the window or the control cannot be made.
    BOOL CreateControl(REFCLSID clsid, const char* pszWindowName, DWORD dwStyle, const RECT& rect,
                       CWnd* pParentWnd, UINT nID, CFile* pPersist = nullptr, BOOL bStorage = FALSE,
                       BSTR bstrLicKey = nullptr);
    // Lets go of the control, then destroys the window.
    virtual BOOL DestroyWindow();

    // Calls the control: a method, or a property get or put, with the parameters that pbParamInfo
    // lists (null: none). vtRet says what pvRet receives: VT_EMPTY (nothing), VT_DISPATCH
    // (IDispatch**, referenced), VT_BSTR (CString*), VT_BOOL (BOOL*), VT_I4 (long*). Throws
    // COleDispatchException with the control's description when the control reports one,
    // COleException otherwise.
    void InvokeHelper(DISPID dwDispID, WORD wFlags, VARTYPE vtRet, void* pvRet,
                      const char* pbParamInfo, ...);

private:
    HWND m_hWnd = nullptr;
    CComPtr<IDispatch> m_control;
};

ZRHB_EXPORT_END
