#include <platform/IniFile.h>

#include <algorithm>
#include <charconv>
#include <cstring>
#include <limits>
#include <optional>
#include <utility>

#include <platform/LastError.h>
#include <platform/UserPaths.h>

#include "system/IniDocument.h"
#include "system/IniIndex.h"
#include "system/IniWriter.h"

namespace platform {

namespace {

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

// What this thread changes in one go, and in which file; null for nothing.
struct OpenUpdate {
    std::string fileName;
    IniWriter* writer = nullptr;
};
thread_local OpenUpdate currentUpdate;

IniWriter* WriterOf(const char* fileName) {
    return currentUpdate.fileName == fileName ? currentUpdate.writer : nullptr;
}

std::optional<std::string> ReadValue(const char* fileName, const char* section, const char* key) {
    const auto copied = [](std::optional<std::string_view> value) {
        return value ? std::optional(std::string(*value)) : std::nullopt;
    };
    if (const IniIndex* snapshot = SnapshotOf(fileName))
        return copied(snapshot->Find(section, key));
    if (const IniWriter* writer = WriterOf(fileName))
        return copied(writer->Document().Find(section, key));
    return copied(IniDocument(TextOf(fileName)).Find(section, key));
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
    if (const IniWriter* writer = WriterOf(fileName))
        return joined(writer->Document().SectionNames());
    const IniDocument document(TextOf(fileName));
    return joined(document.SectionNames());
}

DWORD WriteEntry(const char* section, const char* key, const char* value, const char* fileName) {
    if (IniWriter* writer = WriterOf(fileName)) return writer->Set(section, key, value);
    CString localName;
    if (!LocalFileName(fileName, localName)) return GetLastError();
    IniWriter writer(localName);
    const DWORD error = writer.Set(section, key, value);
    return error ? error : writer.Commit();
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

IniUpdate::IniUpdate(const CString& strFileName) {
    CString localName;
    if (!LocalFileName(strFileName, localName)) return;
    m_writer = std::make_unique<IniWriter>(localName);
    currentUpdate = {strFileName.GetString(), m_writer.get()};
}

IniUpdate::~IniUpdate() {
    currentUpdate = {};
}

BOOL IniUpdate::Commit() {
    const DWORD error = m_writer ? m_writer->Commit() : ERROR_ACCESS_DENIED;
    if (error != ERROR_SUCCESS) SetLastError(error);
    return error == ERROR_SUCCESS;
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
