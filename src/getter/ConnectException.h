// The text of an exception that ended a connect.
#pragma once

#include <platform/String.h>

// Only inside a catch block: describes the exception being handled, whatever its kind, and
// releases a framework exception.
CString DescribeConnectException(const char* pszBrowserName);
