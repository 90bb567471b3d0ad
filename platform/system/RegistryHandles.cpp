// Open keys: what a handle stands for until it is closed.
#include <map>
#include <mutex>
#include <optional>

#include <platform/Registry.h>

#include "system/RegistryPath.h"

namespace platform {

namespace {

struct OpenKey {
    HKEY root;
    CString path;
};

class OpenKeyTable {
public:
    static OpenKeyTable& Instance() {
        static OpenKeyTable table;
        return table;
    }

    HKEY Add(const OpenKey& key) {
        const std::lock_guard guard(m_lock);
        const HKEY handle = reinterpret_cast<HKEY>(m_next);
        m_next += kStep;
        m_keys.emplace(handle, key);
        return handle;
    }

    std::optional<OpenKey> Find(HKEY handle) {
        if (!RegistryRootName(handle).empty()) return OpenKey{handle, CString()};
        const std::lock_guard guard(m_lock);
        const auto found = m_keys.find(handle);
        if (found == m_keys.end()) return std::nullopt;
        return found->second;
    }

    bool Remove(HKEY handle) {
        const std::lock_guard guard(m_lock);
        return m_keys.erase(handle) == 1;
    }

private:
    static constexpr std::uintptr_t kStep = 4;
    std::mutex m_lock;
    std::uintptr_t m_next = kStep; // a closed handle never comes back
    std::map<HKEY, OpenKey> m_keys;
};

DWORD OpenExistingKey(HKEY above, const char* subKey, HKEY& handle) {
    std::optional<OpenKey> key = OpenKeyTable::Instance().Find(above);
    if (!key) return ERROR_INVALID_HANDLE;
    if (subKey && *subKey) key->path = key->path + "\\" + subKey;
    if (const DWORD error = Current<RegistryStore>().KeyExists(key->root, key->path)) return error;
    handle = OpenKeyTable::Instance().Add(*key);
    return ERROR_SUCCESS;
}

} // namespace

} // namespace platform

LONG RegOpenKeyExA(HKEY hKey, const char* pszSubKey, DWORD /*dwOptions*/, REGSAM /*samDesired*/,
                   HKEY* phkResult) {
    if (!phkResult) return static_cast<LONG>(ERROR_INVALID_PARAMETER);
    *phkResult = nullptr;
    return static_cast<LONG>(platform::OpenExistingKey(hKey, pszSubKey, *phkResult));
}

LONG RegCloseKey(HKEY hKey) {
    if (!platform::RegistryRootName(hKey).empty()) return static_cast<LONG>(ERROR_SUCCESS);
    const bool wasOpen = platform::OpenKeyTable::Instance().Remove(hKey);
    return static_cast<LONG>(wasOpen ? ERROR_SUCCESS : ERROR_INVALID_HANDLE);
}
