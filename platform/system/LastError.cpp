#include <platform/LastError.h>

#include <algorithm>
#include <cerrno>
#include <iterator>

#include "system/SystemTexts.h"

namespace {

thread_local DWORD lastError = ERROR_SUCCESS;

struct SystemText {
    DWORD number;
    const char* text;
};

constexpr DWORD StatusNumber(HRESULT hr) {
    return static_cast<DWORD>(hr);
}

constexpr SystemText kSystemTexts[] = {
    {ERROR_SUCCESS, "The operation completed successfully."},
    {ERROR_FILE_NOT_FOUND, "The system cannot find the file specified."},
    {ERROR_PATH_NOT_FOUND, "The system cannot find the path specified."},
    {ERROR_ACCESS_DENIED, "Access is denied."},
    {ERROR_INVALID_HANDLE, "The handle is invalid."},
    {ERROR_GEN_FAILURE, "The system reported a failure without a number of its own."},
    {ERROR_INVALID_PARAMETER, "The parameter is incorrect."},
    {ERROR_DISK_FULL, "There is not enough space on the disk."},
    {ERROR_MOD_NOT_FOUND, "The specified module could not be found."},
    {ERROR_PROC_NOT_FOUND, "The specified procedure could not be found."},
    {ERROR_BUSY, "The requested resource is in use."},
    {ERROR_ALREADY_EXISTS, "The file already exists."},
    {ERROR_MORE_DATA, "More data is available."},
    {ERROR_DIRECTORY, "The directory name is invalid."},
    {ERROR_INVALID_WINDOW_HANDLE, "Invalid window handle."},
    {StatusNumber(E_NOTIMPL), "Not implemented."},
    {StatusNumber(E_NOINTERFACE), "The object has no such interface."},
    {StatusNumber(E_POINTER), "Invalid pointer."},
    {StatusNumber(E_FAIL), "Unspecified error."},
    {StatusNumber(E_UNEXPECTED), "The call was not expected in this state."},
    {StatusNumber(E_OUTOFMEMORY), "Not enough memory."},
    {StatusNumber(DISP_E_MEMBERNOTFOUND), "Member not found."},
    {StatusNumber(CONNECT_E_NOCONNECTION), "There is no connection for this connection ID."},
    {StatusNumber(REGDB_E_CLASSNOTREG), "Class not registered."},
    {StatusNumber(RPC_E_DISCONNECTED), "The object has disconnected from its clients."},
};

const char* LookUp(DWORD number) {
    const auto* const hit =
        std::find_if(std::begin(kSystemTexts), std::end(kSystemTexts),
                     [=](const SystemText& row) { return row.number == number; });
    return hit == std::end(kSystemTexts) ? nullptr : hit->text;
}

} // namespace

DWORD GetLastError() {
    return lastError;
}

void SetLastError(DWORD dwError) {
    lastError = dwError;
}

namespace platform {

const char* FindSystemText(DWORD dwNumber) {
    if (const char* text = LookUp(dwNumber)) return text;
    constexpr DWORD kSystemFacility = 0x80070000u;
    const bool wrapsSystemError = (dwNumber & 0xFFFF0000u) == kSystemFacility;
    return wrapsSystemError ? LookUp(dwNumber & 0xFFFFu) : nullptr;
}

CString SystemErrorText(DWORD dwError) {
    if (const char* text = FindSystemText(dwError)) return text;
    CString strText;
    strText.Format("Error %u", dwError);
    return strText;
}

DWORD ErrorFromErrno(int nErrno) {
    switch (nErrno) {
    case 0:
        return ERROR_SUCCESS;
    case ENOENT:
        return ERROR_FILE_NOT_FOUND;
    case ENOTDIR:
        return ERROR_PATH_NOT_FOUND;
    case EACCES:
    case EPERM:
    case EROFS:
    case EISDIR:
    case ELOOP:
        return ERROR_ACCESS_DENIED;
    case EBADF:
        return ERROR_INVALID_HANDLE;
    case EINVAL:
    case ENAMETOOLONG:
        return ERROR_INVALID_PARAMETER;
    case ENOSPC:
    case EDQUOT:
    case EFBIG:
        return ERROR_DISK_FULL;
    case EBUSY:
    case ETXTBSY:
        return ERROR_BUSY;
    case EEXIST:
        return ERROR_ALREADY_EXISTS;
    default:
        return ERROR_GEN_FAILURE;
    }
}

} // namespace platform
