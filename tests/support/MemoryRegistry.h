// The registry in memory, with the same first entries as a new file. Any thread.
#pragma once

#include <map>
#include <mutex>
#include <string>

#include <platform/Registry.h>

#include "system/RegistryPath.h"
#include "system/RegistrySeed.h"

namespace test_support {

class MemoryRegistry : public platform::RegistryStore {
public:
    MemoryRegistry() {
        for (const HKEY root : {HKEY_CLASSES_ROOT, HKEY_CURRENT_USER, HKEY_LOCAL_MACHINE})
            m_keys[PathOf(root, "")];
        for (const platform::RegistrySeedEntry& entry : platform::kRegistrySeed)
            SetValue(HKEY_CLASSES_ROOT, entry.key, entry.name, {REG_SZ, entry.text});
    }

    DWORD KeyExists(HKEY root, const CString& strKey) override {
        const std::lock_guard guard(m_lock);
        return m_keys.contains(PathOf(root, strKey)) ? ERROR_SUCCESS : ERROR_FILE_NOT_FOUND;
    }
    DWORD GetValue(HKEY root, const CString& strKey, const CString& strName,
                   platform::RegistryValue& value) override {
        const std::lock_guard guard(m_lock);
        const auto key = m_keys.find(PathOf(root, strKey));
        if (key == m_keys.end()) return ERROR_FILE_NOT_FOUND;
        const auto found = key->second.find(Folded(strName.View()));
        if (found == key->second.end()) return ERROR_FILE_NOT_FOUND;
        value = found->second;
        return ERROR_SUCCESS;
    }
    DWORD SetValue(HKEY root, const CString& strKey, const CString& strName,
                   const platform::RegistryValue& value) override {
        const std::lock_guard guard(m_lock);
        Make(PathOf(root, strKey))[Folded(strName.View())] = value;
        return ERROR_SUCCESS;
    }
    DWORD CopyTree(HKEY sourceRoot, const CString& strSource, HKEY targetRoot,
                   const CString& strTarget) override {
        const std::lock_guard guard(m_lock);
        const std::string source = PathOf(sourceRoot, strSource);
        const std::string target = PathOf(targetRoot, strTarget);
        if (target.starts_with(source)) return ERROR_INVALID_PARAMETER;
        const auto snapshot = m_keys;
        if (!snapshot.contains(source)) return ERROR_FILE_NOT_FOUND;
        for (const auto& [path, values] : snapshot)
            if (path.starts_with(source))
                for (auto& copied = Make(target + path.substr(source.size()));
                     const auto& [name, value] : values)
                    copied[name] = value;
        return ERROR_SUCCESS;
    }
    DWORD DeleteTree(HKEY root, const CString& strKey) override {
        const std::lock_guard guard(m_lock);
        const auto isInTree = [path = PathOf(root, strKey)](const auto& key) {
            return key.first.starts_with(path);
        };
        return std::erase_if(m_keys, isInTree) > 0 ? ERROR_SUCCESS : ERROR_FILE_NOT_FOUND;
    }

private:
    using Values = std::map<std::string, platform::RegistryValue>;

    static std::string Folded(std::string_view text) {
        std::string folded(text);
        for (char& ch : folded)
            if (ch >= 'A' && ch <= 'Z') ch = static_cast<char>(ch - 'A' + 'a');
        return folded;
    }
    // The names from the root on in small letters, each followed by a backslash.
    static std::string PathOf(HKEY root, const CString& strKey) {
        std::string path = Folded(platform::RegistryRootName(root)) + "\\";
        const auto names = platform::SplitRegistryPath(strKey).value();
        for (const std::string& name : names)
            path += Folded(name) + "\\";
        return path;
    }
    // The values of a key, which is made, and the keys above it, when there is none.
    Values& Make(const std::string& path) {
        for (std::size_t end = 0; (end = path.find('\\', end)) != std::string::npos;)
            m_keys[path.substr(0, ++end)];
        return m_keys[path];
    }

    std::mutex m_lock;
    std::map<std::string, Values> m_keys;
};

} // namespace test_support
