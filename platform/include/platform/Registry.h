// The registry: a persistent store of keys and typed values. Key paths use backslashes; names are
// compared without regard to case. Several processes may use it at once.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "Export.h"
#include "Services.h"
#include "String.h"

ZRHB_EXPORT_BEGIN

inline const HKEY HKEY_CLASSES_ROOT = reinterpret_cast<HKEY>(std::uintptr_t{0x80000000u});
inline const HKEY HKEY_CURRENT_USER = reinterpret_cast<HKEY>(std::uintptr_t{0x80000001u});
inline const HKEY HKEY_LOCAL_MACHINE = reinterpret_cast<HKEY>(std::uintptr_t{0x80000002u});

using REGSAM = DWORD;
constexpr REGSAM KEY_READ = 0x20019;
constexpr REGSAM KEY_WRITE = 0x20006;

constexpr DWORD REG_SZ = 1;
constexpr DWORD REG_BINARY = 3;
constexpr DWORD REG_DWORD = 4;

namespace platform {

struct RegistryValue {
    DWORD type = REG_SZ;
    std::string data; // the bytes of the value; a text without its NUL
};

// Every operation is one transaction and returns ERROR_SUCCESS or a system error number
// (ERROR_FILE_NOT_FOUND: no such key or value; ERROR_BUSY: another process kept the store locked
// for longer than two seconds).
class RegistryStore {
public:
    virtual ~RegistryStore() = default;
    static RegistryStore& Real();

    virtual DWORD KeyExists(HKEY root, const CString& strKey) = 0;
    // The names of the keys directly below, in no particular order.
    virtual DWORD ChildKeys(HKEY root, const CString& strKey, std::vector<CString>& names) = 0;
    virtual DWORD GetValue(HKEY root, const CString& strKey, const CString& strName,
                           RegistryValue& value) = 0;
    // Creates the key and the keys above it.
    virtual DWORD SetValue(HKEY root, const CString& strKey, const CString& strName,
                           const RegistryValue& value) = 0;
    // Copies a key with all its values and subkeys into the target key, which is created;
    // values of the same name are overwritten. Nothing changes on failure.
    virtual DWORD CopyTree(HKEY sourceRoot, const CString& strSource, HKEY targetRoot,
                           const CString& strTarget) = 0;
    // Deletes the key and everything below it.
    virtual DWORD DeleteTree(HKEY root, const CString& strKey) = 0;
};

} // namespace platform

// Opens an existing key; returns a system error number. Close with RegCloseKey.
LONG RegOpenKeyExA(HKEY hKey, const char* pszSubKey, DWORD dwOptions, REGSAM samDesired,
                   HKEY* phkResult);
LONG RegCloseKey(HKEY hKey);

ZRHB_EXPORT_END
