#include "siblings/ZrCbFileSystem.h"

#include <algorithm>
#include <limits>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include <platform/Exceptions.h>
#include <platform/File.h>
#include <platform/LastError.h>

namespace {

constexpr UINT kReadChunk = 64 * 1024; // bytes
// For what callers put behind a file in a buffer, so that it does not move the file.
constexpr std::size_t kRoomBehind = 256; // bytes
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
    const bool isDirectory = dwError == ERROR_ACCESS_DENIED && CFile::IsDirectory(strPath);
    return "Cannot read file '" + strPath +
           "': " + (isDirectory ? "It is a directory." : platform::SystemErrorText(dwError));
}

struct DeleteException {
    void operator()(CException* exception) const { exception->Delete(); }
};

// ERROR_SUCCESS with the whole file given to the target in pieces. The length is only a hint: a
// file may grow or shrink meanwhile, and what the system makes up while it is read has none.
template <class TTarget>
DWORD ReadAll(const CString& strPath, TTarget& target) {
    CFile file;
    if (!file.Open(strPath, CFile::modeRead)) return GetLastError();
    try {
        const std::uint64_t length = file.GetLength();
        if (length > kLargestFile) return ERROR_MORE_DATA;
        target.Reserve(static_cast<std::size_t>(length));
        std::vector<char> chunk(kReadChunk);
        std::size_t total = 0;
        while (const UINT count = file.Read(chunk.data(), kReadChunk)) {
            total += count;
            if (total > kLargestFile) return ERROR_MORE_DATA;
            target.Append(chunk.data(), count);
        }
    } catch (CFileException* exception) {
        const std::unique_ptr<CFileException, DeleteException> caught(exception);
        return caught->m_lOsError;
    }
    return ERROR_SUCCESS;
}

struct TextTarget {
    void Reserve(std::size_t count) { text.reserve(count); }
    void Append(const char* bytes, UINT count) { text.append(bytes, count); }

    std::string text;
};

struct BufferTarget {
    void Reserve(std::size_t count) { buffer.Reserve(count + kRoomBehind); }
    void Append(const char* bytes, UINT count) { buffer.Add(bytes, count); }

    CByteBuffer& buffer;
};

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
    TextTarget target;
    if (const DWORD error = ReadAll(strPath, target)) {
        strErr = ReasonText(strPath, error);
        return 0;
    }
    strContent = CString(std::move(target.text));
    return 1;
}

int CZrCbFileSystem::GetFileAsBinary(const CString& strPath, CByteBuffer* pTarget,
                                     CString& strErr) {
    const DWORD held = pTarget->GetSize();
    BufferTarget target{*pTarget};
    if (const DWORD error = ReadAll(strPath, target)) {
        pTarget->Truncate(held);
        strErr = ReasonText(strPath, error);
        return 0;
    }
    return 1;
}
