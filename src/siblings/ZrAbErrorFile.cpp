#include "siblings/ZrAbErrorFile.h"

#include <exception>

#include <platform/LastError.h>

#include "siblings/LogFile.h"
#include "siblings/LogLine.h"

namespace {

// Logging must not disturb whoever logs: no exception, and the last error stays as it was.
int Write(const LogRecord& record) {
    const DWORD lastError = GetLastError();
    int written = 0;
    try {
        written = LogFile::Instance().Append(FormatLogLine(record)) ? 1 : 0;
    } catch (const std::exception&) {
        written = 0; // out of memory
    }
    SetLastError(lastError);
    return written;
}

std::string_view NameOf(const char* pszSourceFile) {
    return pszSourceFile ? pszSourceFile : "";
}

} // namespace

int CZrAbErrorFile::Log(const CString& strText, EZrAbAppGroup eGroup, const char* pszSourceFile,
                        unsigned nSourceLine, const char* /*pszDate*/, const char* /*pszTime*/,
                        EZrAbErrorLevel eLevel, EZrAbFunctionType /*eType*/) {
    return Write({eGroup, eLevel == eErrorLevel_Failure, NameOf(pszSourceFile), nSourceLine,
                  strText.View()});
}

int CZrAbErrorFile::LogError(const CString& strText, EZrAbAppGroup eGroup,
                             const char* pszSourceFile, unsigned nSourceLine,
                             const char* /*pszTimeStamp*/, EZrAbFunctionType /*eType*/) {
    return Write({eGroup, true, NameOf(pszSourceFile), nSourceLine, strText.View()});
}

int CZrAbErrorFile::LogFlow(const CString& strText, EZrAbAppGroup eGroup, const char* pszSourceFile,
                            unsigned nSourceLine, const char* /*pszTimeStamp*/,
                            EZrAbFunctionType /*eType*/) {
    return Write({eGroup, false, NameOf(pszSourceFile), nSourceLine, strText.View()});
}

int CZrAbErrorFile::WriteErrorText(CString strApplication, CString strText, CString strSourceFile,
                                   unsigned long nSourceLine, CString strFurther) {
    CString text = strApplication + ": " + strText;
    if (!strFurther.IsEmpty()) text += " " + strFurther;
    return Write({m_group, true, strSourceFile.View(), nSourceLine, text.View()});
}
