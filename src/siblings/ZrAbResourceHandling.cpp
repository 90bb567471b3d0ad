#include "siblings/ZrAbResourceHandling.h"

#include "errors/LibraryModule.h"

CZrAbResourceHandling::CZrAbResourceHandling(EZrAbAppGroup /*eGroup*/, const CString& strModule,
                                             const CString& /*strFurther*/) {
    const AFX_EXTENSION_MODULE& library = EnsureLibraryModule();
    // The table registered last is searched first.
    if (strModule.CompareNoCase(library.moduleName) == 0) m_strings.emplace(library);
}
