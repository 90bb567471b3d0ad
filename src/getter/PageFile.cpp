#include "getter/PageFile.h"

#include <platform/Exceptions.h>
#include <platform/File.h>

#include "siblings/ZrCbFileSystem.h"

bool SavePage(const CString& strFileName, const CString& page) {
    CString lines = page;
    lines.Replace("\r\n", "\n");
    CStdioFile file;
    if (!file.Open(strFileName, CFile::modeCreate | CFile::modeWrite | CFile::typeText))
        return false;
    try {
        file.WriteString(lines);
        file.Close();
        return true;
    } catch (CException* exception) {
        exception->Delete();
        CZrCbFileSystem::DeleteFileSafely(strFileName);
        return false;
    }
}
