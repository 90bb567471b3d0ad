// System helpers of the client.
#pragma once

#include <platform/String.h>

class CZrCbSystem {
public:
    // Returns after dwMilliseconds; the thread's window messages are served meanwhile. bServe is
    // 1.
    static void WaitTimeout(DWORD dwMilliseconds, int bServe);
    static CString GetLastErrorText(DWORD dwError);
    // Non-zero on a system that knows the browser's protected mode (setting ZRHTTP_LEGACY_SYSTEM
    // makes it answer 0).
    static int IsOperatingSystemWinVistaOrHigher();
};
