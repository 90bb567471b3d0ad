// What the browser engines find on this machine.
#pragma once

#include "Export.h"
#include "String.h"

ZRHB_EXPORT_BEGIN

namespace platform {

// The Chromium that an engine would start: the setting ZRHTTP_BROWSER (whether the file exists or
// not), else the first one on PATH. Empty when there is none.
CString ChromiumFileName();

// Whether that Chromium can be kept from sending post data twice; else it is given none, unless
// ZRHTTP_REPEATED_POST is 1. Starts it, and takes a second. False with the reason, if it is not
// that, when it cannot be started.
bool ChromiumSendsPostsOnce(CString& strError);

// The display that browsers would show their windows on. Empty when there is none, it does not
// answer, or ZRHTTP_HEADLESS is 1.
CString BrowserDisplayName();

// Why the file that the setting ZRHTTP_CA_FILE names cannot be used, in plain words. Empty when it
// can, or none is named.
CString CertificateFileProblem();

} // namespace platform

ZRHB_EXPORT_END
