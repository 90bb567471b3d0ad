// The registry in memory, with the same first entries as a new file. Any thread.
#pragma once

#include <map>
#include <mutex>
#include <string>
#include <vector>

#include <platform/Registry.h>

namespace test_support {

class MemoryRegistry : public platform::RegistryStore {
public:
    MemoryRegistry();

    DWORD KeyExists(HKEY root, const CString& strKey) override;
    DWORD GetValue(HKEY root, const CString& strKey, const CString& strName,
                   platform::RegistryValue& value) override;
    DWORD SetValue(HKEY root, const CString& strKey, const CString& strName,
                   const platform::RegistryValue& value) override;
    DWORD CopyTree(HKEY sourceRoot, const CString& strSource, HKEY targetRoot,
                   const CString& strTarget) override;
    DWORD DeleteTree(HKEY root, const CString& strKey) override;

private:
    // Names along the way from the root, the root's own first, in small letters: a key's subkeys
    // follow it in the map.
    using Path = std::vector<std::string>;
    using Values = std::map<std::string, platform::RegistryValue>;

    static DWORD PathOf(HKEY root, const CString& strKey, Path& path);
    void MakeKeys(const Path& path);

    std::mutex m_lock;
    std::map<Path, Values> m_keys;
};

} // namespace test_support
