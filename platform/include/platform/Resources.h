// String resources of loaded modules, and what the framework knows of the running application.
#pragma once

#include <span>

#include "Export.h"
#include "String.h"

ZRHB_EXPORT_BEGIN

// One entry of a module's string table. The text is UTF-8 and is converted to the ANSI code page
// when it is loaded.
struct StringResource {
    UINT id;
    const char* text;
};

// What a module hands to the framework when it is loaded.
struct AFX_EXTENSION_MODULE {
    CString moduleName;
    std::span<const StringResource> strings;
    BOOL bInitialized = FALSE;
};

// Returns TRUE and marks the module as initialised; FALSE when it has no name.
BOOL AfxInitExtensionModule(AFX_EXTENSION_MODULE& state);

// While it lives, string loading also searches the module's table. The module must outlive it.
class CDynLinkLibrary {
public:
    explicit CDynLinkLibrary(const AFX_EXTENSION_MODULE& state);
    ~CDynLinkLibrary();
    CDynLinkLibrary(const CDynLinkLibrary&) = delete;
    CDynLinkLibrary& operator=(const CDynLinkLibrary&) = delete;

private:
    const AFX_EXTENSION_MODULE* m_module;
};

struct AFX_MODULE_STATE {
    CString m_strCurrentAppName; // file name of the running program
};
AFX_MODULE_STATE* AfxGetModuleState();

ZRHB_EXPORT_END
