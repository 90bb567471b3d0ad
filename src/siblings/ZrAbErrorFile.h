// The client's error log.
//
// One file, zrhttpbase3.log in the log directory (mode 0600), one line a record: UTC time, group,
// level, source, line, text; line breaks and control characters in the text are escaped, passwords
// masked. At 1 MiB the file is renamed to zrhttpbase3.log.1 (replacing an older one) and a new one
// begun. A log that cannot be written changes nothing for the caller. Any thread.
#pragma once

#include <ZrAbAppGroup.h>
#include <platform/String.h>

class CZrAbErrorFile {
public:
    enum EZrAbErrorLevel { eErrorLevel_Failure = 0, eErrorLevel_Trace = 2 };
    enum EZrAbFunctionType { eFunctionType_Http = 6 };

    explicit CZrAbErrorFile(EZrAbAppGroup eGroup) : m_group(eGroup) {}

    // All return 1 when the record was written, else 0.
    static int Log(const CString& strText, EZrAbAppGroup eGroup, const char* pszSourceFile,
                   unsigned nSourceLine, const char* pszDate, const char* pszTime,
                   EZrAbErrorLevel eLevel, EZrAbFunctionType eType);
    static int LogError(const CString& strText, EZrAbAppGroup eGroup, const char* pszSourceFile,
                        unsigned nSourceLine, const char* pszTimeStamp, EZrAbFunctionType eType);
    static int LogFlow(const CString& strText, EZrAbAppGroup eGroup, const char* pszSourceFile,
                       unsigned nSourceLine, const char* pszTimeStamp, EZrAbFunctionType eType);

    int WriteErrorText(CString strApplication, CString strText, CString strSourceFile,
                       unsigned long nSourceLine, CString strFurther);

private:
    EZrAbAppGroup m_group;
};
