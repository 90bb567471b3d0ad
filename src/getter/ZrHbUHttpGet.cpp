// The getter: construction, settings, small accessors.

#include <ZrHbUHttpGet.h>

#include <platform/IniFile.h>
#include <platform/Window.h>

#include "getter/ProtectedMode.h"
#include "getter/ZrHbUHttpGet_Impl.h"
#include "siblings/ZrAbModules.h"
#include "siblings/ZrCbFileSystem.h"

namespace {

constexpr DWORD kDefaultSecurityWait = 1000; // ms

DWORD ReadOpenTimeout(const CString& strFile) {
    return GetPrivateProfileIntA("Timeout", "OpenTimeout", kDefaultSecurityWait, strFile);
}

DWORD ConfiguredSecurityWait(EZrAbAppGroup eGroup) {
    const CString settings = CZrAbModules::GetSettingsPath(eGroup, 1);
    if (settings.IsEmpty()) return kDefaultSecurityWait;
    const CString own = CZrCbFileSystem::CombinePaths(settings, "ZrHbHttpGet.cci");
    if (eGroup == eAppGroup_2 && !CZrCbFileSystem::FileExists(own)) {
        const CString data = CZrAbModules::GetModuleStaticDataPath(eGroup, eModule_HttpBase, 1);
        const CString shared = CZrCbFileSystem::CombinePaths(data, "HttpGet.ini");
        if (!data.IsEmpty() && CZrCbFileSystem::FileExists(shared)) return ReadOpenTimeout(shared);
    }
    return ReadOpenTimeout(own);
}

} // namespace

CZrHbUHttpGet::CZrHbUHttpGet(EZrAbAppGroup eGroup) {
    CreateImpl(std::make_unique<CZrHbUHttpGet_Impl>(eGroup));
    SetSecurityTimeout(ConfiguredSecurityWait(eGroup));
}

CZrHbUHttpGet::CZrHbUHttpGet(const CZrHbUHttpGet& other) {
    CreateCopy(other);
}

CZrHbUHttpGet& CZrHbUHttpGet::operator=(const CZrHbUHttpGet& other) {
    Assign([&] {
        if (this == &other || !GetImpl() || !other.GetImpl()) return;
        Close();
        Disconnect(0);
        *GetImpl() = *other.GetImpl();
    });
    return *this;
}

CZrHbUHttpGet::~CZrHbUHttpGet() {
    Close();
    Disconnect(10000);
    DeleteImpl();
}

void CZrHbUHttpGet::DestroyImpl(CZrHbUHttpGet_Impl* pImpl) {
    std::default_delete<CZrHbUHttpGet_Impl>()(pImpl);
}

BOOL CZrHbUHttpGet::IsConnected() {
    return GetImpl() && GetImpl()->backend ? TRUE : FALSE;
}

// Every connection is one with the same kind of browser.
CZrHbUHttpGet::EZrHbConnectWith CZrHbUHttpGet::IsConnectedWith() {
    return eConnectWith_InternetExplorer;
}

HWND CZrHbUHttpGet::GetWindow() {
    IWebBrowser2* browser = Get_IWebBrowser2_ptr();
    LONG_PTR handle = 0;
    if (!browser || FAILED(browser->get_HWND(&handle))) return nullptr;
    const HWND window = reinterpret_cast<HWND>(handle);
    return IsWindow(window) ? window : nullptr;
}

void CZrHbUHttpGet::PutVisible(BOOL bVisible) {
    if (IsConnected()) GetImpl()->backend->PutVisible(bVisible);
}

void CZrHbUHttpGet::KeepThisFrameOpen() {
    if (IsConnected()) GetImpl()->backend->KeepThisFrameOpen();
}

IWebBrowser2* CZrHbUHttpGet::Get_IWebBrowser2_ptr() {
    CString strErr;
    return Get_IWebBrowser2_ptr(strErr);
}

IWebBrowser2* CZrHbUHttpGet::Get_IWebBrowser2_ptr(CString& strErr) {
    if (!GetImpl()) return nullptr;
    if (GetImpl()->backend) return GetImpl()->backend->Get_IWebBrowser2_ptr(strErr);
    strErr = "Get_IWebBrowser2_ptr failed because: not connected.";
    return nullptr;
}

void CZrHbUHttpGet::HandleWinMessageQueue() {
    MSG message;
    while (PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE)) {
        TranslateMessage(&message);
        DispatchMessageA(&message);
    }
}

void CZrHbUHttpGet::SetSecurityTimeout(DWORD dwMilliseconds) {
    if (GetImpl()) GetImpl()->nSecurityWait = dwMilliseconds;
}

void CZrHbUHttpGet::SetBaudForCalcLargeDataTimeout(DWORD dwBaud) {
    if (GetImpl()) GetImpl()->nBaudForLargeData = dwBaud;
}

void CZrHbUHttpGet::SetOffsetForCalcLargeDataTimeout_sec(DWORD dwSeconds) {
    if (GetImpl()) GetImpl()->nOffsetForLargeDataSeconds = dwSeconds;
}

CTimeSpan CZrHbUHttpGet::GetLastMaxIdleTimeEncountered() {
    return GetImpl() ? GetImpl()->longestIdle : CTimeSpan();
}

BOOL CZrHbUHttpGet::MAPI_IEIsProtectedModeURL(const CString& strUrl) {
    return AskProtectedMode(GetImpl()->eGroup, strUrl);
}
