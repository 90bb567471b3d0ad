#include "getter/TrafficFiles.h"

#include <algorithm>

#include <ZrHbResultCodes.h>
#include <platform/Exceptions.h>
#include <platform/File.h>

namespace TrafficFiles {

CString PostText(const void* pPostData, DWORD nPostLen) {
    const auto* const text = static_cast<const char*>(pPostData);
    if (!text || nPostLen == ZRHB_LENGTH_OF_TEXT) return CString(text);
    return CString(std::string_view(text, std::find(text, text + nPostLen, '\0')));
}

CString OnOneLine(const CString& strText) {
    CString line;
    bool isInLineEnd = false;
    for (const char ch : strText.View()) {
        const bool isLineEnd = ch == '\r' || ch == '\n';
        if (isLineEnd && !isInLineEnd) line += ' ';
        if (!isLineEnd) line += ch;
        isInLineEnd = isLineEnd;
    }
    return line;
}

void WriteTextFile(const CString& strText, const CString& strFileName) {
    CStdioFile file;
    if (!file.Open(strFileName,
                   CFile::modeCreate | CFile::modeWrite | CFile::typeText | CFile::modePrivate))
        return;
    try {
        file.WriteString(strText);
        file.Close();
    } catch (CFileException* exception) {
        exception->Delete();
    }
}

} // namespace TrafficFiles
