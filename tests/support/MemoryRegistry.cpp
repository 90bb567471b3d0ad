#include "support/MemoryRegistry.h"

#include <algorithm>

#include "system/RegistryPath.h"
#include "system/RegistrySeed.h"

namespace test_support {

namespace {

std::string Folded(std::string_view text) {
    std::string folded(text);
    for (char& ch : folded)
        if (ch >= 'A' && ch <= 'Z') ch = static_cast<char>(ch - 'A' + 'a');
    return folded;
}

bool IsAtOrBelow(const std::vector<std::string>& path, const std::vector<std::string>& above) {
    return path.size() >= above.size() && std::equal(above.begin(), above.end(), path.begin());
}

bool HasNul(const CString& text) {
    return text.View().find('\0') != std::string_view::npos;
}

} // namespace

MemoryRegistry::MemoryRegistry() {
    for (const HKEY root : {HKEY_CLASSES_ROOT, HKEY_CURRENT_USER, HKEY_LOCAL_MACHINE})
        m_keys[{Folded(platform::RegistryRootName(root))}];
    for (const platform::RegistrySeedEntry& entry : platform::kRegistrySeed)
        SetValue(HKEY_CLASSES_ROOT, entry.key, entry.name, {REG_SZ, entry.text});
}

DWORD MemoryRegistry::PathOf(HKEY root, const CString& strKey, Path& path) {
    const std::string_view rootName = platform::RegistryRootName(root);
    if (rootName.empty()) return ERROR_INVALID_HANDLE;
    const auto names = platform::SplitRegistryPath(strKey);
    if (!names) return ERROR_INVALID_PARAMETER;
    path = {Folded(rootName)};
    for (const std::string& name : *names)
        path.push_back(Folded(name));
    return ERROR_SUCCESS;
}

void MemoryRegistry::MakeKeys(const Path& path) {
    Path above;
    for (const std::string& name : path) {
        above.push_back(name);
        m_keys[above];
    }
}

DWORD MemoryRegistry::KeyExists(HKEY root, const CString& strKey) {
    Path path;
    if (const DWORD error = PathOf(root, strKey, path)) return error;
    const std::lock_guard guard(m_lock);
    return m_keys.contains(path) ? ERROR_SUCCESS : ERROR_FILE_NOT_FOUND;
}

DWORD MemoryRegistry::GetValue(HKEY root, const CString& strKey, const CString& strName,
                               platform::RegistryValue& value) {
    Path path;
    if (const DWORD error = PathOf(root, strKey, path)) return error;
    const std::lock_guard guard(m_lock);
    const auto key = m_keys.find(path);
    if (HasNul(strName)) return ERROR_INVALID_PARAMETER;
    if (key == m_keys.end()) return ERROR_FILE_NOT_FOUND;
    const auto found = key->second.find(Folded(strName.View()));
    if (found == key->second.end()) return ERROR_FILE_NOT_FOUND;
    value = found->second;
    return ERROR_SUCCESS;
}

DWORD MemoryRegistry::SetValue(HKEY root, const CString& strKey, const CString& strName,
                               const platform::RegistryValue& value) {
    Path path;
    if (const DWORD error = PathOf(root, strKey, path)) return error;
    if (HasNul(strName)) return ERROR_INVALID_PARAMETER;
    const std::lock_guard guard(m_lock);
    MakeKeys(path);
    m_keys[path][Folded(strName.View())] = value;
    return ERROR_SUCCESS;
}

DWORD MemoryRegistry::CopyTree(HKEY sourceRoot, const CString& strSource, HKEY targetRoot,
                               const CString& strTarget) {
    Path source, target;
    if (const DWORD error = PathOf(sourceRoot, strSource, source)) return error;
    if (const DWORD error = PathOf(targetRoot, strTarget, target)) return error;
    if (IsAtOrBelow(target, source)) return ERROR_INVALID_PARAMETER;
    const std::lock_guard guard(m_lock);
    const auto snapshot = m_keys;
    if (!snapshot.contains(source)) return ERROR_FILE_NOT_FOUND;
    for (auto key = snapshot.find(source); key != snapshot.end(); ++key) {
        if (!IsAtOrBelow(key->first, source)) break;
        Path copy = target;
        copy.insert(copy.end(), key->first.begin() + static_cast<std::ptrdiff_t>(source.size()),
                    key->first.end());
        MakeKeys(copy);
        for (const auto& [name, value] : key->second)
            m_keys[copy][name] = value;
    }
    return ERROR_SUCCESS;
}

DWORD MemoryRegistry::DeleteTree(HKEY root, const CString& strKey) {
    Path path;
    if (const DWORD error = PathOf(root, strKey, path)) return error;
    if (path.size() == 1) return ERROR_INVALID_PARAMETER;
    const std::lock_guard guard(m_lock);
    return std::erase_if(m_keys, [&](const auto& key) { return IsAtOrBelow(key.first, path); }) > 0
               ? ERROR_SUCCESS
               : ERROR_FILE_NOT_FOUND;
}

} // namespace test_support
