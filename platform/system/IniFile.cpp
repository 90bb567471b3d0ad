#include <platform/IniFile.h>

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cstring>
#include <limits>
#include <mutex>
#include <optional>
#include <utility>

#include <platform/Diagnostics.h>
#include <platform/LastError.h>
#include <platform/UserPaths.h>

#include "system/IniDocument.h"
#include "system/IniIndex.h"
#include "system/WholeFile.h"

namespace platform {

namespace {

// No settings file comes near this; a bigger one is not taken into memory.
constexpr std::size_t kLargestIniFile = std::size_t{16} * 1024 * 1024;

// One writer of the process at a time, from reading the file to renaming the new one onto it.
std::mutex& WriteLock() {
    static std::mutex lock;
    return lock;
}

bool IsMissing(int error) {
    return error == ENOENT || error == ENOTDIR;
}

// 0 with the text; a missing file is an empty one. Anything else is reported.
int ReadIniText(const CString& localName, std::string& text) {
    const int error = ReadWholeFile(localName.GetString(), kLargestIniFile, text);
    if (error == 0 || IsMissing(error)) return 0;
    CString report;
    report.Format("The settings file %s cannot be read and counts as missing: %s",
                  localName.GetString(), std::strerror(error));
    ReportDiagnostic(Severity::failure, report);
    text.clear();
    return error;
}

// Empty for a file that cannot be read.
std::string TextOf(const char* fileName) {
    CString localName;
    std::string text;
    if (LocalFileName(fileName, localName)) ReadIniText(localName, text);
    return text;
}

// The snapshot that this thread's reads of its file are answered from; null for none.
thread_local const IniIndex* currentSnapshot = nullptr;

const IniIndex* SnapshotOf(const char* fileName) {
    const bool isOfFile = currentSnapshot && currentSnapshot->FileName() == fileName;
    return isOfFile ? currentSnapshot : nullptr;
}

std::optional<std::string> ReadValue(const char* fileName, const char* section, const char* key) {
    std::optional<std::string_view> value;
    if (const IniIndex* snapshot = SnapshotOf(fileName)) {
        value = snapshot->Find(section, key);
        return value ? std::optional(std::string(*value)) : std::nullopt;
    }
    const IniDocument document(TextOf(fileName));
    value = document.Find(section, key);
    return value ? std::optional(std::string(*value)) : std::nullopt;
}

// Each with its NUL.
std::string ReadSectionNames(const char* fileName) {
    const auto joined = [](const std::vector<std::string_view>& names) {
        std::string text;
        for (const std::string_view name : names)
            text.append(name).push_back('\0');
        return text;
    };
    if (const IniIndex* snapshot = SnapshotOf(fileName)) return joined(snapshot->SectionNames());
    const IniDocument document(TextOf(fileName));
    return joined(document.SectionNames());
}

bool HasLineEnd(std::string_view text) {
    return text.find_first_of("\r\n") != text.npos;
}

// A name that would be read back as something else is refused, so that no caller's text can bring
// in lines or sections of its own.
bool AreWritable(std::string_view section, std::string_view key, std::string_view value) {
    const std::string_view name = TrimIniBlanks(key);
    if (HasLineEnd(section) || HasLineEnd(key) || HasLineEnd(value)) return false;
    return !name.empty() && name.front() != ';' && name.front() != '[' &&
           name.find('=') == std::string_view::npos;
}

DWORD RewriteDocument(const CString& localName, const char* section, const char* key,
                      const char* value) {
    const std::lock_guard guard(WriteLock());
    std::string text;
    if (const int error = ReadIniText(localName, text)) return ErrorFromErrno(error);
    IniDocument document(std::move(text));
    if (value) {
        document.Set(section, key, value);
    } else if (document.Find(section, key)) {
        document.Remove(section, key);
    } else {
        return ERROR_SUCCESS; // nothing to remove
    }
    if (document.Text().size() > kLargestIniFile) return ErrorFromErrno(EFBIG);
    const int error = ReplaceWholeFile(localName.GetString(), document.Text());
    return error ? ErrorFromErrno(error) : ERROR_SUCCESS;
}

DWORD WriteEntry(const char* section, const char* key, const char* value, const char* fileName) {
    if (!section || !key || !AreWritable(section, key, value ? value : ""))
        return ERROR_INVALID_PARAMETER;
    CString localName;
    if (!LocalFileName(fileName, localName)) return GetLastError();
    return RewriteDocument(localName, section, key, value);
}

// Numbers too large to hold become the largest one.
UINT LeadingNumber(std::string_view text) {
    long long number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    const bool isNegative = text.starts_with('-');
    if (error == std::errc::result_out_of_range || number > std::numeric_limits<UINT>::max() ||
        number < std::numeric_limits<int>::min())
        return isNegative ? static_cast<UINT>(std::numeric_limits<int>::min())
                          : std::numeric_limits<UINT>::max();
    return static_cast<UINT>(number);
}

// Copies as much as fits before `reserved` closing NULs; returns the characters copied.
DWORD CopyText(std::string_view text, char* buffer, DWORD size, DWORD reserved) {
    const std::size_t count = std::min<std::size_t>(text.size(), size - reserved);
    text.copy(buffer, count);
    std::memset(buffer + count, 0, reserved);
    return static_cast<DWORD>(count);
}

} // namespace

IniSnapshot::IniSnapshot(const CString& strFileName)
    : m_index(std::make_unique<const IniIndex>(strFileName.GetString(), TextOf(strFileName))),
      m_outer(std::exchange(currentSnapshot, m_index.get())) {}

IniSnapshot::~IniSnapshot() {
    currentSnapshot = m_outer;
}

} // namespace platform

UINT GetPrivateProfileIntA(const char* pszSection, const char* pszKey, int nDefault,
                           const char* pszFileName) {
    const auto value = platform::ReadValue(pszFileName, pszSection, pszKey);
    return value ? platform::LeadingNumber(*value) : static_cast<UINT>(nDefault);
}

DWORD GetPrivateProfileStringA(const char* pszSection, const char* pszKey, const char* pszDefault,
                               char* pszBuffer, DWORD nSize, const char* pszFileName) {
    if (nSize == 0) return 0;
    const auto value = platform::ReadValue(pszFileName, pszSection, pszKey);
    const char* const fallback = pszDefault ? pszDefault : "";
    return platform::CopyText(value ? *value : fallback, pszBuffer, nSize, 1);
}

DWORD GetPrivateProfileSectionNamesA(char* pszBuffer, DWORD nSize, const char* pszFileName) {
    if (nSize < 2) {
        if (nSize == 1) pszBuffer[0] = '\0';
        return 0;
    }
    const std::string names = platform::ReadSectionNames(pszFileName);
    const bool fits = names.size() < nSize;
    return platform::CopyText(names, pszBuffer, nSize, fits ? 1 : 2);
}

BOOL WritePrivateProfileStringA(const char* pszSection, const char* pszKey, const char* pszValue,
                                const char* pszFileName) {
    const DWORD error = platform::WriteEntry(pszSection, pszKey, pszValue, pszFileName);
    if (error == ERROR_SUCCESS) return TRUE;
    SetLastError(error);
    return FALSE;
}
