// Error texts, and records in the client's error log.
#pragma once

#include "ZrAbAppGroup.h"
#include "platform/Export.h"
#include "platform/String.h"

ZRHB_EXPORT_BEGIN

class CZrHbErrorHandling {
public:
    // The string resource with this id from the loaded modules (the library's own table is in
    // German). Without one: "Internal Error: LoadString(%d) failed." with the id. Any thread.
    static CString LoadStringAndGet(unsigned int nResourceId);

    // printf formatting into 10,240 characters, the NUL included. A text that does not fit is
    // replaced as a whole by "*** _LogMsg: Internal Error: Buffer not large enough!". Any thread.
    static CString CSFmt(const char* pszFormat, ...) __attribute__((format(printf, 1, 2)));

    // Notes the source location that the next records carry (one for the whole process). Call it
    // at once before one of the two below, on the same thread.
    static void __ZrHb_SetParams(const char* pszSourceFile, unsigned long nSourceLine);

    // Writes a record with the noted location to the group's error log. The first form writes the
    // text unchanged, the second formats as CSFmt does. Failures to write are not reported.
    static void __ZrHb_WriteErrorText(EZrAbAppGroup eGroup, const char* pszText);
    static void __ZrHb_WriteErrorText_Fmt(EZrAbAppGroup eGroup, const char* pszFormat, ...)
        __attribute__((format(printf, 2, 3)));

private:
    virtual int ThisVirtualFunctionIsDefinedToAddVirtualMethodsTable() { return 0; }
};

ZRHB_EXPORT_END
