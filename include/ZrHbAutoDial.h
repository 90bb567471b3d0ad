// The user's setting that lets the system dial an Internet connection by itself: bit 0 of the
// registry value "EnableAutodial" of the Internet settings. Any thread.
#pragma once

#include "platform/Export.h"

ZRHB_EXPORT_BEGIN

class CZrHbAutoDial {
public:
    // 1 on, 0 off, -1 when the value cannot be read.
    static int Get_EnableAutodial();
    // nState: 0 off, -1 only read, any other number on. Returns the state before, or -1 when it
    // cannot be read; nothing is written then. A failed write is not reported.
    static int Set_EnableAutodial(int nState);

private:
    virtual int ThisVirtualFunctionIsDefinedToAddVirtualMethodsTable() { return 0; }
};

ZRHB_EXPORT_END
