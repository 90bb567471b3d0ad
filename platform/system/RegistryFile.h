// The file behind the registry: made and filled on first use, put aside when it is damaged.
#pragma once

#include <functional>

#include <platform/Types.h>

#include "system/Sqlite.h"

namespace platform {

enum class RegistryAccess { read, write };

// Opens the registry of the user as it is named now and runs `work` in one transaction, which is
// committed when work returns ERROR_SUCCESS and undone otherwise. Returns work's result or the
// error number of what went wrong, which is then reported: ERROR_BUSY for a file that another
// process holds for a second, or did so a short while ago.
//
// A file that is damaged or no database at all is renamed to NAME.corrupt-N (nothing is
// overwritten), a new one begun and the work run on that. Of several processes that find the damage
// at the same time, one does this. The caller sees to it that one thread of the process at a time
// is in here: the locks of a file belong to the process, and closing it anywhere drops them.
DWORD WithRegistryFile(RegistryAccess access, const std::function<DWORD(SqliteDatabase&)>& work);

} // namespace platform
