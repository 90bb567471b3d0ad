#include "siblings/ZrCbFileSystem.h"

#include <algorithm>
#include <limits>
#include <memory>
#include <vector>

#include <platform/Exceptions.h>
#include <platform/File.h>
#include <platform/LastError.h>

namespace {

constexpr UINT kReadChunk = 64 * 1024; // bytes
// A CString counts its characters with an int.
constexpr std::size_t kLargestFile = std::numeric_limits<int>::max();

bool IsSeparator(char ch) {
    return ch == '/' || ch == '\\';
}

bool HasDrive(std::string_view path) {
    return path.size() >= 2 && path[1] == ':' &&
           ((path[0] >= 'a' && path[0] <= 'z') || (path[0] >= 'A' && path[0] <= 'Z'));
}

void Append(std::string& path, std::string_view part) {
    if (part.empty()) return;
    if (!path.empty()) {
        while (!part.empty() && IsSeparator(part.front()))
            part.remove_prefix(1);
        if (!IsSeparator(path.back())) path += HasDrive(path) ? '\\' : '/';
    }
    path += part;
}

CString ReasonText(const CString& strPath, DWORD dwError) {
    return "Cannot read file '" + strPath + "': " + platform::SystemErrorText(dwError);
}

struct DeleteException {
    void operator()(CException* exception) const { exception->Delete(); }
};

// ERROR_SUCCESS with the whole file.
DWORD ReadAll(const CString& strPath, std::string& content) {
    CFile file;
    if (!file.Open(strPath, CFile::modeRead)) return GetLastError();
    std::vector<char> chunk(kReadChunk);
    try {
        while (const UINT count = file.Read(chunk.data(), kReadChunk)) {
            content.append(chunk.data(), count);
            if (content.size() > kLargestFile) return ERROR_MORE_DATA;
        }
    } catch (CFileException* exception) {
        const std::unique_ptr<CFileException, DeleteException> caught(exception);
        return caught->m_lOsError;
    }
    return ERROR_SUCCESS;
}

} // namespace

CString CZrCbFileSystem::CombinePaths(const CString& str1, const CString& str2, const CString& str3,
                                      const CString& str4, const CString& str5, const CString& str6,
                                      const CString& str7, const CString& str8, const CString& str9,
                                      const CString& str10) {
    std::string path;
    for (const CString* part :
         {&str1, &str2, &str3, &str4, &str5, &str6, &str7, &str8, &str9, &str10})
        Append(path, part->View());
    return CString(path);
}

CString CZrCbFileSystem::CombinePaths(const CString& strDirectory, const CString& strFileName) {
    const CString empty;
    return CombinePaths(strDirectory, strFileName, empty, empty, empty, empty, empty, empty, empty,
                        empty);
}

int CZrCbFileSystem::FileExists(const CString& strPath) {
    return CFile::Exists(strPath);
}

EZrCbResult CZrCbFileSystem::DeleteFileSafely(const CString& strPath) {
    try {
        CFile::Remove(strPath);
    } catch (CFileException* exception) {
        const std::unique_ptr<CFileException, DeleteException> caught(exception);
        const DWORD error = caught->m_lOsError;
        const bool isGone = error == ERROR_FILE_NOT_FOUND || error == ERROR_PATH_NOT_FOUND;
        return isGone ? eResult_Ok : eResult_Failed;
    }
    return eResult_Ok;
}

void CZrCbFileSystem::SplitPath(const CString& strPath, CString& strDrive, CString& strDirectory,
                                CString& strName, CString& strExtension) {
    std::string path(strPath.View()); // an output may be the input
    std::string_view rest = path;
    const std::size_t drive = HasDrive(rest) ? 2 : 0;
    strDrive = CString(rest.substr(0, drive));
    rest.remove_prefix(drive);
    const std::size_t separator = rest.find_last_of("/\\");
    const std::size_t nameBegin = separator == std::string_view::npos ? 0 : separator + 1;
    strDirectory = CString(rest.substr(0, nameBegin));
    rest.remove_prefix(nameBegin);
    const std::size_t dot = std::min(rest.rfind('.'), rest.size());
    strName = CString(rest.substr(0, dot));
    strExtension = CString(rest.substr(dot));
}

int CZrCbFileSystem::GetFileAsText(const CString& strPath, CString& strContent, CString& strErr) {
    std::string content;
    if (const DWORD error = ReadAll(strPath, content)) {
        strErr = ReasonText(strPath, error);
        return 0;
    }
    strContent = CString(content);
    return 1;
}

int CZrCbFileSystem::GetFileAsBinary(const CString& strPath, CByteBuffer* pTarget,
                                     CString& strErr) {
    std::string content;
    if (const DWORD error = ReadAll(strPath, content)) {
        strErr = ReasonText(strPath, error);
        return 0;
    }
    pTarget->Add(content.data(), static_cast<DWORD>(content.size()));
    return 1;
}
