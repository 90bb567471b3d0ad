// Loading shared libraries at run time. The path may be a drive path; a bare file name is looked
// for in the current directory only.
#pragma once

#include "Export.h"
#include "Services.h"
#include "Types.h"

ZRHB_EXPORT_BEGIN

namespace platform {

class LibraryLoader {
public:
    virtual ~LibraryLoader() = default;
    static LibraryLoader& Real();
    virtual HMODULE Load(const char* pszFileName) = 0;
    virtual FARPROC FindProc(HMODULE hModule, const char* pszName) = 0;
    virtual BOOL Free(HMODULE hModule) = 0;
};

} // namespace platform

// Null on failure, with GetLastError() (ERROR_MOD_NOT_FOUND).
HMODULE LoadLibraryA(const char* pszFileName);
// Null when the library has no such export (ERROR_PROC_NOT_FOUND).
FARPROC GetProcAddress(HMODULE hModule, const char* pszName);
BOOL FreeLibrary(HMODULE hModule);

ZRHB_EXPORT_END
