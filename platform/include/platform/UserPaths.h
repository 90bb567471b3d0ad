// Where the user's files are kept, and how the client's drive paths map to files.
//
// The root is $ZRHTTP_HOME, with settings/, data/, log/, drive_c/ and registry.sqlite below it;
// without it, the XDG base directories (config, data, state), zrhttpbase3 below each. The
// environment is read at every call. Directories are made (mode 0700) by whoever first writes.
#pragma once

#include "Export.h"
#include "String.h"

ZRHB_EXPORT_BEGIN

namespace platform {

CString SettingsDirectory();
CString DataDirectory();
CString LogDirectory();
CString RegistryFileName();

// A path as the system takes it: drive paths ("c:\a\b", "C:/a/b") map below drive_c/ with
// backslashes as slashes, and make that root where it is missing; other paths stay as they are.
// Returns false, with GetLastError() (ERROR_ACCESS_DENIED), for a drive path that would leave its
// root ("..") or another drive.
bool LocalFileName(const char* pszPath, CString& strLocal);

// Both take drive paths as well.
// Makes the directory and those above it (mode 0700). False with GetLastError().
bool MakeDirectory(const CString& strPath);
// TRUE for an existing directory that can be read.
bool IsReadableDirectory(const CString& strPath);

} // namespace platform

ZRHB_EXPORT_END
