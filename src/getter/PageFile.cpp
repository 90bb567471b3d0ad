#include "getter/PageFile.h"

#include <platform/FileReplacement.h>
#include <platform/UserPaths.h>

bool SavePage(const CString& strFileName, const CString& page) {
    CString lines = page;
    lines.Replace("\r\n", "\n");
    lines.Replace("\n", "\r\n");
    CString localName;
    if (!platform::LocalFileName(strFileName, localName)) return false;
    platform::FileReplacement file;
    return file.Open(localName.GetString(), platform::FileReplacement::Access::shared) == 0 &&
           file.Write(lines.View()) == 0 && file.Commit() == 0;
}
