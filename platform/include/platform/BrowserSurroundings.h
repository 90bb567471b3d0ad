// What the browser engines find on this machine.
#pragma once

#include <platform/Export.h>
#include <platform/String.h>

ZRHB_EXPORT_BEGIN

namespace platform {

// The Chromium that an engine would start: the setting ZRHTTP_BROWSER (whether the file exists or
// not), else the first one on PATH. Empty when there is none.
CString ChromiumFileName();

// The display that browsers would show their windows on. Empty when there is none, it does not
// answer, or ZRHTTP_HEADLESS is 1.
CString BrowserDisplayName();

} // namespace platform

ZRHB_EXPORT_END
