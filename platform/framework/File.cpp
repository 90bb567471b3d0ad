#include <platform/File.h>

#include <cerrno>
#include <cstdio>
#include <optional>
#include <utility>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <platform/Exceptions.h>
#include <platform/LastError.h>
#include <platform/UserPaths.h>

namespace {

constexpr mode_t kPrivateMode = S_IRUSR | S_IWUSR;
constexpr mode_t kSharedMode = S_IRUSR | S_IWUSR | S_IRGRP | S_IWGRP | S_IROTH | S_IWOTH;

[[noreturn]] void ThrowError(DWORD dwError, const CString& strFileName) {
    SetLastError(dwError);
    AfxThrowFileException(dwError, strFileName);
}

[[noreturn]] void ThrowErrno(const CString& strFileName) {
    ThrowError(platform::ErrorFromErrno(errno), strFileName);
}

CString LocalNameOrThrow(const char* pszFileName) {
    CString strLocal;
    if (!platform::LocalFileName(pszFileName, strLocal)) ThrowError(GetLastError(), pszFileName);
    return strLocal;
}

int SystemFlags(UINT nOpenFlags) {
    int flags = O_CLOEXEC | O_NOCTTY;
    flags |= nOpenFlags & (CFile::modeWrite | CFile::modeAppend) ? O_WRONLY : O_RDONLY;
    if (nOpenFlags & CFile::modeAppend) flags |= O_APPEND;
    if (nOpenFlags & CFile::modeRegular) flags |= O_NONBLOCK; // means nothing to a regular file
    if (nOpenFlags & CFile::modeCreate) {
        flags |= O_CREAT;
        if (!(nOpenFlags & CFile::modeNoTruncate)) flags |= O_TRUNC;
    }
    return flags;
}

int OpenDescriptor(const CString& strLocal, int flags, mode_t mode) {
    int descriptor = -1;
    do {
        descriptor = ::open(strLocal.GetString(), flags, mode);
    } while (descriptor < 0 && errno == EINTR);
    return descriptor;
}

// Gives back to the user what a strict umask took from a new private file. A file that others
// may use was there before and keeps its mode.
void RestoreOwnerAccess(int descriptor, mode_t mode) {
    const bool othersMayUseIt = mode & (S_IRWXG | S_IRWXO);
    if (!othersMayUseIt && (mode & kPrivateMode) != kPrivateMode)
        static_cast<void>(::fchmod(descriptor, kPrivateMode) == 0);
}

// ERROR_SUCCESS when the open descriptor is a file this class serves.
DWORD CheckOpened(int descriptor, UINT nOpenFlags) {
    struct stat status = {};
    if (::fstat(descriptor, &status) != 0) return platform::ErrorFromErrno(errno);
    const bool takesAny = !(nOpenFlags & CFile::modeRegular);
    if (S_ISDIR(status.st_mode) || !(takesAny || S_ISREG(status.st_mode)))
        return ERROR_ACCESS_DENIED;
    if ((nOpenFlags & CFile::modeCreate) && (nOpenFlags & CFile::modePrivate))
        RestoreOwnerAccess(descriptor, status.st_mode);
    return ERROR_SUCCESS;
}

// Nothing when there is no such file.
std::optional<mode_t> ModeOf(const char* pszFileName) {
    CString strLocal;
    struct stat status = {};
    if (!platform::LocalFileName(pszFileName, strLocal)) return std::nullopt;
    if (::stat(strLocal, &status) != 0) return std::nullopt;
    return status.st_mode;
}

CString WithCarriageReturns(const CString& strText) {
    CString strConverted = strText;
    strConverted.Replace("\n", "\r\n");
    return strConverted;
}

} // namespace

CFile::~CFile() {
    if (m_descriptor >= 0) ::close(m_descriptor);
}

BOOL CFile::Open(const char* pszFileName, UINT nOpenFlags) {
    if (m_descriptor >= 0) {
        SetLastError(ERROR_BUSY);
        return FALSE;
    }
    CString strLocal;
    if (!platform::LocalFileName(pszFileName, strLocal)) return FALSE;
    const mode_t mode = nOpenFlags & modePrivate ? kPrivateMode : kSharedMode;
    const int descriptor = OpenDescriptor(strLocal, SystemFlags(nOpenFlags), mode);
    if (descriptor < 0) {
        SetLastError(platform::ErrorFromErrno(errno));
        return FALSE;
    }
    if (const DWORD error = CheckOpened(descriptor, nOpenFlags); error != ERROR_SUCCESS) {
        ::close(descriptor);
        SetLastError(error);
        return FALSE;
    }
    m_descriptor = descriptor;
    m_name = pszFileName;
    return TRUE;
}

void CFile::Write(const void* pData, UINT nCount) {
    const char* next = static_cast<const char*>(pData);
    std::size_t left = nCount;
    while (left > 0) {
        const ssize_t written = ::write(m_descriptor, next, left);
        if (written < 0 && errno == EINTR) continue;
        if (written < 0) ThrowErrno(m_name);
        if (written == 0) ThrowError(ERROR_DISK_FULL, m_name);
        next += written;
        left -= static_cast<std::size_t>(written);
    }
}

UINT CFile::Read(void* pBuffer, UINT nCount) {
    char* const buffer = static_cast<char*>(pBuffer);
    UINT total = 0;
    while (total < nCount) {
        const ssize_t count = ::read(m_descriptor, buffer + total, nCount - total);
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) ThrowErrno(m_name);
        if (count == 0) break;
        total += static_cast<UINT>(count);
    }
    return total;
}

std::uint64_t CFile::GetLength() const {
    struct stat status = {};
    if (::fstat(m_descriptor, &status) != 0) ThrowErrno(m_name);
    return static_cast<std::uint64_t>(status.st_size);
}

void CFile::Close() {
    const int descriptor = std::exchange(m_descriptor, -1);
    // An interrupted close has released the descriptor all the same.
    if (descriptor >= 0 && ::close(descriptor) != 0 && errno != EINTR) ThrowErrno(m_name);
}

void CFile::Remove(const char* pszFileName) {
    const CString strLocal = LocalNameOrThrow(pszFileName);
    struct stat status = {};
    if (::lstat(strLocal, &status) != 0) ThrowErrno(pszFileName);
    // A device named as a target is not a file to be cleared away.
    if (!S_ISREG(status.st_mode) && !S_ISLNK(status.st_mode))
        ThrowError(ERROR_ACCESS_DENIED, pszFileName);
    if (::unlink(strLocal) != 0) ThrowErrno(pszFileName);
}

void CFile::Rename(const char* pszOldName, const char* pszNewName) {
    const CString strOld = LocalNameOrThrow(pszOldName);
    if (std::rename(strOld, LocalNameOrThrow(pszNewName)) != 0) ThrowErrno(pszOldName);
}

BOOL CFile::Exists(const char* pszFileName) {
    const std::optional<mode_t> mode = ModeOf(pszFileName);
    return mode && !S_ISDIR(*mode);
}

BOOL CFile::IsDirectory(const char* pszFileName) {
    const std::optional<mode_t> mode = ModeOf(pszFileName);
    return mode && S_ISDIR(*mode);
}

BOOL CStdioFile::Open(const char* pszFileName, UINT nOpenFlags) {
    if (!CFile::Open(pszFileName, nOpenFlags)) return FALSE;
    m_isText = (nOpenFlags & typeText) != 0;
    return TRUE;
}

void CStdioFile::WriteString(const CString& strText) {
    const CString strOut = m_isText ? WithCarriageReturns(strText) : strText;
    Write(strOut.GetString(), static_cast<UINT>(strOut.GetLength()));
}
