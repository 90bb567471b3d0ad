#include "siblings/ZrAbErrorFile.h"

#include <exception>

#include <platform/LastError.h>
#include <platform/LogWatch.h>

#include "siblings/LogFile.h"
#include "siblings/LogLine.h"

namespace {

// What is behind the line's last tab; a text has none.
std::string_view TextOf(std::string_view line) {
    line.remove_prefix(line.rfind('\t') + 1);
    line.remove_suffix(1);
    return line;
}

// Logging must not disturb whoever logs: no exception, and the last error stays as it was.
int Write(const LogRecord& record) {
    const DWORD lastError = GetLastError();
    int written = 0;
    try {
        const std::string line = FormatLogLine(record);
        written = LogFile::Instance().Append(line) ? 1 : 0;
        platform::TellLogWatches(
            {record.isError ? platform::Severity::failure : platform::Severity::trace, TextOf(line),
             written != 0});
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
