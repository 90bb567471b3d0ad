// The client's application groups.
#pragma once

#include "platform/Export.h"

ZRHB_EXPORT_BEGIN

// Any value may be passed; the library itself distinguishes these.
enum EZrAbAppGroup : int {
    eAppGroup_1 = 1,
    eAppGroup_2 = 2, // used where an operation has no group argument
    eAppGroup_3 = 3,
};

ZRHB_EXPORT_END
