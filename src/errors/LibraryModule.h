// The library as a module of the application framework.
#pragma once

#include <platform/Resources.h>

// File name under which the library's string table is registered.
constexpr const char* kLibraryModuleName = "ZrHttpBase3.dll";

// From loading to unloading, the framework's string loading also searches the library's table, and
// what the platform reports goes to the client's log. The first call sees to both; it is made when
// the library is loaded. In a static library this holds for programs that use an object file which
// calls it: the error handling and the getter do. Any thread.
const AFX_EXTENSION_MODULE& EnsureLibraryModule();
