#include "getter/ContentTypeSubstitution.h"

#include <utility>

#include <platform/Registry.h>

#include "siblings/ZrCbRegistry.h"

namespace {

constexpr const char* kDatabase = "MIME\\Database\\Content Type\\";
constexpr const char* kPlainText = "MIME\\Database\\Content Type\\text/plain";
constexpr const char* kBackupSuffix = "-bak4httpget";

LONG FindKey(const CString& strKey) {
    HKEY key = nullptr;
    const LONG result = RegOpenKeyExA(HKEY_CLASSES_ROOT, strKey, 0, KEY_READ, &key);
    if (result == 0) RegCloseKey(key);
    return result;
}

LONG CopyKey(const CString& strSource, const CString& strTarget) {
    return CZrCbRegistry::RegCopyTree(HKEY_CLASSES_ROOT, strSource, HKEY_CLASSES_ROOT, strTarget);
}

// Whether the type's own entry, if it has one, is in the backup now. It cannot be as long as
// another process holds the registry.
bool IsKept(const CString& strOwn, const CString& strBackup) {
    LONG result = FindKey(strBackup);
    if (result != 0 && result != LONG{ERROR_BUSY}) result = CopyKey(strOwn, strBackup);
    return result != LONG{ERROR_BUSY};
}

void DeleteKey(const CString& strKey) {
    CZrCbRegistry::RegDelTree(HKEY_CLASSES_ROOT, strKey);
}

} // namespace

void ContentTypeSubstitution::Substitute(const CString& strContentType) {
    m_type.reset();
    // No type, and a key name that would mean other keys, up to the whole database.
    if (strContentType.IsEmpty() || strContentType.View().find('\\') != std::string_view::npos)
        return;
    const CString own = kDatabase + strContentType;
    if (!IsKept(own, own + kBackupSuffix)) return;
    m_type = std::make_shared<CString>(strContentType);
    DeleteKey(own);
    CopyKey(kPlainText, own);
}

void ContentTypeSubstitution::Restore() {
    if (!m_type || m_type->IsEmpty()) return;
    const CString own = kDatabase + std::exchange(*m_type, CString());
    const CString backup = own + kBackupSuffix;
    DeleteKey(own);
    if (CopyKey(backup, own) == 0) DeleteKey(backup);
}
