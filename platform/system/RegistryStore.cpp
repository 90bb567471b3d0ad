// The real registry: the operations on keys, over the user's registry file.
#include <map>
#include <mutex>

#include <platform/CodePage.h>
#include <platform/Registry.h>

#include "system/RegistryFile.h"
#include "system/RegistryPath.h"
#include "system/RegistrySchema.h"

namespace platform {

namespace {

struct KeyPlace {
    HKEY root;
    std::vector<std::string> path;
};

// ERROR_SUCCESS with the place; the error number of an argument that names none.
DWORD FindPlace(HKEY root, const CString& strKey, KeyPlace& place) {
    if (RegistryRootName(root).empty()) return ERROR_INVALID_HANDLE;
    auto path = SplitRegistryPath(strKey);
    if (!path) return ERROR_INVALID_PARAMETER;
    place = {root, std::move(*path)};
    return ERROR_SUCCESS;
}

bool HasNul(const CString& text) {
    return text.View().find('\0') != std::string_view::npos;
}

DWORD CopyKeys(SqliteDatabase& database, const KeyPlace& source, const KeyPlace& target) {
    const auto top = FindRegistryKey(database, source.root, source.path);
    if (!top) return ERROR_FILE_NOT_FOUND;
    std::map<RegistryKeyId, RegistryKeyId> copies;
    // Read as a whole first: the target may be a key above the source.
    for (const RegistryKeyRow& row : RegistryTree(database, *top)) {
        const RegistryKeyId copy =
            row.id == *top ? MakeSureOfRegistryKey(database, target.root, target.path)
                           : MakeSureOfChildKey(database, copies.at(row.parent), row.name);
        copies.emplace(row.id, copy);
        CopyRegistryValues(database, row.id, copy);
    }
    return ERROR_SUCCESS;
}

class FileRegistry : public RegistryStore {
public:
    DWORD KeyExists(HKEY root, const CString& strKey) override {
        return OnKey(RegistryAccess::read, root, strKey,
                     [](SqliteDatabase&, RegistryKeyId) { return ERROR_SUCCESS; });
    }

    DWORD ChildKeys(HKEY root, const CString& strKey, std::vector<CString>& names) override {
        return OnKey(RegistryAccess::read, root, strKey,
                     [&](SqliteDatabase& database, RegistryKeyId key) {
                         for (const RegistryKeyRow& row : RegistryTree(database, key))
                             if (row.parent == key) names.push_back(AnsiFromUtf8(row.name));
                         return ERROR_SUCCESS;
                     });
    }

    DWORD GetValue(HKEY root, const CString& strKey, const CString& strName,
                   RegistryValue& value) override {
        if (HasNul(strName)) return ERROR_INVALID_PARAMETER;
        const std::string name = Utf8FromAnsi(strName.View());
        return OnKey(RegistryAccess::read, root, strKey,
                     [&](SqliteDatabase& database, RegistryKeyId key) {
                         auto found = FindRegistryValue(database, key, name);
                         if (!found) return ERROR_FILE_NOT_FOUND;
                         value = std::move(*found);
                         return ERROR_SUCCESS;
                     });
    }

    DWORD SetValue(HKEY root, const CString& strKey, const CString& strName,
                   const RegistryValue& value) override {
        KeyPlace place;
        if (const DWORD error = FindPlace(root, strKey, place)) return error;
        if (HasNul(strName)) return ERROR_INVALID_PARAMETER;
        const std::string name = Utf8FromAnsi(strName.View());
        return Run(RegistryAccess::write, [&](SqliteDatabase& database) {
            const RegistryKeyId key = MakeSureOfRegistryKey(database, place.root, place.path);
            PutRegistryValue(database, key, name, value);
            return ERROR_SUCCESS;
        });
    }

    DWORD CopyTree(HKEY sourceRoot, const CString& strSource, HKEY targetRoot,
                   const CString& strTarget) override {
        KeyPlace source, target;
        if (const DWORD error = FindPlace(sourceRoot, strSource, source)) return error;
        if (const DWORD error = FindPlace(targetRoot, strTarget, target)) return error;
        if (source.root == target.root && IsAtOrBelow(target.path, source.path))
            return ERROR_INVALID_PARAMETER;
        return Run(RegistryAccess::write,
                   [&](SqliteDatabase& database) { return CopyKeys(database, source, target); });
    }

    DWORD DeleteTree(HKEY root, const CString& strKey) override {
        KeyPlace place;
        if (const DWORD error = FindPlace(root, strKey, place)) return error;
        if (place.path.empty()) return ERROR_INVALID_PARAMETER; // roots stay
        return OnKey(RegistryAccess::write, root, strKey,
                     [](SqliteDatabase& database, RegistryKeyId key) {
                         DeleteRegistryTree(database, key);
                         return ERROR_SUCCESS;
                     });
    }

private:
    template <class TWork>
    DWORD Run(RegistryAccess access, TWork work) {
        const std::lock_guard guard(m_lock);
        return WithRegistryFile(access, work);
    }

    // Runs the work on an existing key.
    template <class TWork>
    DWORD OnKey(RegistryAccess access, HKEY root, const CString& strKey, TWork work) {
        KeyPlace place;
        if (const DWORD error = FindPlace(root, strKey, place)) return error;
        return Run(access, [&](SqliteDatabase& database) -> DWORD {
            const auto key = FindRegistryKey(database, place.root, place.path);
            return key ? work(database, *key) : ERROR_FILE_NOT_FOUND;
        });
    }

    std::mutex m_lock; // one thread at a time in the file
};

} // namespace

RegistryStore& RegistryStore::Real() {
    static FileRegistry store;
    return store;
}

} // namespace platform
