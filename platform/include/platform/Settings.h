// The platform's own settings: environment variable first, then section "Platform" of
// platform.ini in the settings directory (the key is the variable's name), then the default. An
// empty value counts as none. ZRHTTP_HOME, which says where platform.ini is, comes from the
// environment only.
#pragma once

#include <vector>

#include "Export.h"
#include "String.h"

ZRHB_EXPORT_BEGIN

namespace platform {

struct Setting {
    CString name;   // ZRHTTP_...
    CString value;  // empty where the default is to look for it
    CString source; // "environment", "platform.ini" or "default"
};

// The named setting (one of those that AllSettings lists).
Setting GetSetting(const char* pszName);
std::vector<Setting> AllSettings();

} // namespace platform

ZRHB_EXPORT_END
