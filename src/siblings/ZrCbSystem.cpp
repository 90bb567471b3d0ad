#include "siblings/ZrCbSystem.h"

#include <platform/Clock.h>
#include <platform/LastError.h>
#include <platform/Messages.h>
#include <platform/Settings.h>

namespace {

// A span of the tick count; right also when the count wraps within it.
class Period {
public:
    explicit Period(DWORD dwMilliseconds) : m_length(dwMilliseconds) {}
    DWORD Left() const {
        const DWORD elapsed = GetTickCount() - m_start;
        return elapsed < m_length ? m_length - elapsed : 0;
    }

private:
    DWORD m_start = GetTickCount();
    DWORD m_length;
};

void ServeMessages(const Period& period) {
    MSG message;
    while (PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE)) {
        TranslateMessage(&message);
        DispatchMessageA(&message);
        if (period.Left() == 0) return; // messages may come in faster than they are handled
    }
}

} // namespace

void CZrCbSystem::WaitTimeout(DWORD dwMilliseconds, int /*bServe*/) {
    const Period period(dwMilliseconds);
    ServeMessages(period);
    while (const DWORD left = period.Left()) {
        MsgWaitForMultipleObjects(0, nullptr, FALSE, left, QS_ALLINPUT);
        ServeMessages(period);
    }
}

CString CZrCbSystem::GetLastErrorText(DWORD dwError) {
    return platform::SystemErrorText(dwError);
}

int CZrCbSystem::IsOperatingSystemWinVistaOrHigher() {
    return platform::GetSetting("ZRHTTP_LEGACY_SYSTEM").value == "1" ? 0 : 1;
}
