// Which module's string table texts are loaded from.
#pragma once

#include <optional>

#include <ZrAbAppGroup.h>
#include <platform/Resources.h>

// While it lives, string resources are loaded from the named module's table before any other.
class CZrAbResourceHandling {
public:
    // strModule: file name of a loaded module. A module that is not loaded changes nothing.
    // strFurther is empty.
    CZrAbResourceHandling(EZrAbAppGroup eGroup, const CString& strModule,
                          const CString& strFurther);
    CZrAbResourceHandling(const CZrAbResourceHandling&) = delete;
    CZrAbResourceHandling& operator=(const CZrAbResourceHandling&) = delete;

private:
    std::optional<CDynLinkLibrary> m_strings;
};
