// The getter: connecting and disconnecting.

#include <ZrHbUHttpGet.h>

#include <ZrHbErrorHandling.h>
#include <platform/Clock.h>

#include "errors/LogRecord.h"
#include "getter/BackendFactory.h"
#include "getter/ConnectException.h"
#include "getter/ZrHbUHttpGet_Impl.h"
#include "siblings/ZrCbSystem.h"

namespace {

constexpr const char* kBrowserName = "Internet Explorer";

// The trace records of one connect: its arguments, and how it ended.
class ConnectTrace {
public:
    ConnectTrace(EZrAbAppGroup eGroup, HWND hWndParent, int nVariant, int nConnectWith,
                 int nTraceFlag, const CString& strText)
        : m_group(eGroup),
          m_parent(static_cast<unsigned>(reinterpret_cast<std::uintptr_t>(hWndParent))),
          m_variant(nVariant), m_connectWith(nConnectWith), m_traceFlag(nTraceFlag),
          m_text(strText) {}

    void Started(const CString& strErr) const { Write(strErr, "started"); }
    DWORD Returns(const CString& strErr, DWORD nCode) const {
        CString end;
        end.Format(nCode == ZRHB_OK ? "returns %u" : "returns %u (error)", nCode);
        Write(strErr, end);
        return nCode;
    }

private:
    void Write(const CString& strErr, const char* pszEnd) const {
        CString record;
        record.Format("Connect(%u, \"%s\", %d, %d, %d, \"%s\") %s", m_parent, strErr.GetString(),
                      m_variant, m_connectWith, m_traceFlag, m_text.GetString(), pszEnd);
        ZRHB_TRACE(record, m_group);
    }

    EZrAbAppGroup m_group;
    unsigned m_parent;
    int m_variant;
    int m_connectWith;
    int m_traceFlag;
    const CString& m_text;
};

// On a system with protected mode a page that opens in it needs the control in this process.
// bProtected asks for the server; it is called at most once.
template <class TAskProtected>
BackendKind ChooseOnVista(const CString& strServerUrl, int bForceInProcess, int bInProcess,
                          TAskProtected isProtected) {
    ZRHB_TRACE("CZrHbUHttpGet::ConnectRefact() : OS is Windows Vista or higher", eAppGroup_2);
    if (strServerUrl.IsEmpty() || bForceInProcess == 1 || bInProcess == 1)
        return BackendKind::inProcess;
    CString parsed;
    parsed.Format("Parsed server url for new browser object instantiation \"ConnectV3()\" "
                  "(Windows Vista Support) is : %s",
                  strServerUrl.GetString());
    ZRHB_TRACE(parsed, eAppGroup_2);
    if (isProtected()) {
        ZRHB_TRACE("CZrHbUHttpGet::ConnectRefact() : Internet Explorer works in protected mode",
                   eAppGroup_2);
        return BackendKind::inProcess;
    }
    ZRHB_TRACE("CZrHbUHttpGet::ConnectRefact() : Internet Explorer does not work in protected mode",
               eAppGroup_2);
    return BackendKind::outOfProcess;
}

template <class TAskProtected>
BackendKind ChooseBackend(int nVariant, const CString& strServerUrl, int bForceInProcess,
                          int bInProcess, TAskProtected isProtected) {
    if (nVariant == CZrHbUHttpGet::eInvisible) return BackendKind::controlHosting;
    if (CZrCbSystem::IsOperatingSystemWinVistaOrHigher())
        return ChooseOnVista(strServerUrl, bForceInProcess, bInProcess, isProtected);
    return bInProcess ? BackendKind::inProcess : BackendKind::outOfProcess;
}

// A back-end that cannot connect stays attached.
DWORD AttachBackend(CZrHbUHttpGet_Impl& state, BackendKind kind, HWND hWndParent, CString& strErr,
                    const ConnectTrace& trace) {
    state.backend = platform::Current<BackendFactory>().Create(kind, state.nConnectVersion);
    if (!state.backend) {
        strErr = "Internal error: No valid browser instance";
        ZRHB_TRACE(strErr, state.eGroup);
        return ZRHB_CONNECT_FAILED;
    }
    if (state.backend->Connect(hWndParent, strErr) != ZRHB_OK) {
        strErr = "Internal error: Connecting browser instance failed";
        return trace.Returns(strErr, ZRHB_CONNECT_FAILED);
    }
    return trace.Returns(strErr, ZRHB_OK);
}

// Only inside a catch block.
DWORD EndByException(const CZrHbUHttpGet_Impl& state, const char* pszBrowserName, CString& strErr,
                     const ConnectTrace& trace) {
    strErr = DescribeConnectException(pszBrowserName);
    CZrHbErrorHandling::__ZrHb_SetParams(__FILE__, __LINE__);
    CZrHbErrorHandling::__ZrHb_WriteErrorText_Fmt(
        state.eGroup, "CZrHbUHttpGet::Connect() / Unexpected EXCEPTION! : %s", strErr.GetString());
    return trace.Returns(strErr, ZRHB_CANNOT_NAVIGATE);
}

} // namespace

DWORD CZrHbUHttpGet::Connect(HWND hWndParent, CString& strErr, EZrHbInterfaceVariant eVariant,
                             EZrHbConnectWith eConnectWith, int nTraceFlag,
                             const CString& strTraceText) {
    return ConnectRefact(hWndParent, strErr, eVariant, eConnectWith, nTraceFlag, strTraceText, "",
                         0, 0);
}

DWORD CZrHbUHttpGet::ConnectV2(HWND hWndParent, CString& strErr, EZrHbInterfaceVariant eVariant,
                               EZrHbConnectWith eConnectWith, int nTraceFlag,
                               const CString& strTraceText) {
    return ConnectV3(hWndParent, strErr, eVariant, eConnectWith, nTraceFlag, strTraceText, "", 0,
                     0);
}

DWORD CZrHbUHttpGet::ConnectV3(HWND hWndParent, CString& strErr, EZrHbInterfaceVariant eVariant,
                               EZrHbConnectWith eConnectWith, int nTraceFlag,
                               const CString& strTraceText, const CString& strServerUrl,
                               int bForceInProcessOnVista, int bInProcess) {
    if (GetImpl()) GetImpl()->nConnectVersion = 2;
    return ConnectRefact(hWndParent, strErr, eVariant, eConnectWith, nTraceFlag, strTraceText,
                         strServerUrl, bForceInProcessOnVista, bInProcess);
}

DWORD CZrHbUHttpGet::ConnectRefact(HWND hWndParent, CString& strErr, EZrHbInterfaceVariant eVariant,
                                   EZrHbConnectWith eConnectWith, int nTraceFlag,
                                   const CString& strTraceText, const CString& strServerUrl,
                                   int bForceInProcessOnVista, int bInProcess) {
    CZrHbUHttpGet_Impl* const state = GetImpl();
    if (!state) return ZRHB_CONNECT_FAILED;
    const ConnectTrace trace(state->eGroup, hWndParent, eVariant, eConnectWith, nTraceFlag,
                             strTraceText);
    trace.Started(strErr);
    state->specialContentType.Forget();
    strErr.Empty();
    state->nInterfaceVariant = eVariant;

    const char* browserName = "";
    try {
        Close();
        Disconnect(10000);
        state->nConnectedWith = 0;
        AfxEnableControlContainer();
        CoInitialize(nullptr);
        browserName = kBrowserName;
        const BackendKind kind =
            ChooseBackend(eVariant, strServerUrl, bForceInProcessOnVista, bInProcess,
                          [&] { return MAPI_IEIsProtectedModeURL(strServerUrl); });
        return AttachBackend(*state, kind, hWndParent, strErr, trace);
    } catch (...) {
        return EndByException(*state, browserName, strErr, trace);
    }
}

void CZrHbUHttpGet::Disconnect(DWORD dwWaitMs) {
    if (!IsConnected()) return;
    Close();
    GetImpl()->backend.Take()->Disconnect();
    if (GetImpl()->nConnectedWith == 0) return;
    for (DWORD waited = 0; waited < dwWaitMs; waited += 100) {
        HandleWinMessageQueue();
        Sleep(100);
    }
}
