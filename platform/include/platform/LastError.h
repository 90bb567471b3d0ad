// The calling thread's last system error.
#pragma once

#include "Export.h"
#include "String.h"

ZRHB_EXPORT_BEGIN

DWORD GetLastError();
void SetLastError(DWORD dwError);

namespace platform {

// The host's number for an errno value; unknown ones become ERROR_GEN_FAILURE.
DWORD ErrorFromErrno(int nErrno);
// The system's text for an error number, for example "The system cannot find the file
// specified."; "Error N" for a number without one.
CString SystemErrorText(DWORD dwError);

} // namespace platform

ZRHB_EXPORT_END
