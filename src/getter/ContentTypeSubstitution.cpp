#include "getter/ContentTypeSubstitution.h"

#include <utility>

#include <platform/Registry.h>

#include "siblings/ZrCbRegistry.h"

namespace {

constexpr const char* kDatabase = "MIME\\Database\\Content Type\\";
constexpr const char* kPlainText = "MIME\\Database\\Content Type\\text/plain";
constexpr const char* kBackupSuffix = "-bak4httpget";

bool KeyExists(const CString& strKey) {
    HKEY key = nullptr;
    if (RegOpenKeyExA(HKEY_CLASSES_ROOT, strKey, 0, KEY_READ, &key) != 0) return false;
    RegCloseKey(key);
    return true;
}

bool CopyKey(const CString& strSource, const CString& strTarget) {
    return CZrCbRegistry::RegCopyTree(HKEY_CLASSES_ROOT, strSource, HKEY_CLASSES_ROOT, strTarget) ==
           0;
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
    m_type = std::make_shared<CString>(strContentType);
    const CString own = kDatabase + strContentType;
    const CString backup = own + kBackupSuffix;
    if (!KeyExists(backup)) CopyKey(own, backup);
    DeleteKey(own);
    CopyKey(kPlainText, own);
}

void ContentTypeSubstitution::Restore() {
    if (!m_type || m_type->IsEmpty()) return;
    const CString own = kDatabase + std::exchange(*m_type, CString());
    const CString backup = own + kBackupSuffix;
    DeleteKey(own);
    if (CopyKey(backup, own)) DeleteKey(backup);
}
