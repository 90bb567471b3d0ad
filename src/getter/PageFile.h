// Saving a page as a text file.
#pragma once

#include <platform/String.h>

// Writes the page with CR LF line ends, replacing an existing file. False when that failed; no
// partial file stays behind.
bool SavePage(const CString& strFileName, const CString& page);
