// Saving a page as a text file.
#pragma once

#include <platform/String.h>

// Writes the page with CR LF line ends, replacing an existing file once all is written. False when
// that failed; what was there stays.
bool SavePage(const CString& strFileName, const CString& page);
