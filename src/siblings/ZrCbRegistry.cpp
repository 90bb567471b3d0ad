#include "siblings/ZrCbRegistry.h"

#include <cstring>

using platform::RegistryStore;
using platform::RegistryValue;

namespace {

RegistryStore& Store() {
    return platform::Current<RegistryStore>();
}

LONG AsResult(DWORD dwError) {
    return static_cast<LONG>(dwError);
}

} // namespace

LONG CZrCbRegistry::GetRegistryKeyValueBinary(HKEY hRoot, const CString& strKey,
                                              const CString& strName, BYTE* pBuffer, DWORD& nSize,
                                              REGSAM /*samDesired*/) {
    RegistryValue value;
    if (const DWORD error = Store().GetValue(hRoot, strKey, strName, value)) return AsResult(error);
    const DWORD room = nSize;
    nSize = static_cast<DWORD>(value.data.size());
    if (nSize > room) return AsResult(ERROR_MORE_DATA);
    if (nSize > 0) std::memcpy(pBuffer, value.data.data(), nSize);
    return AsResult(ERROR_SUCCESS);
}

LONG CZrCbRegistry::SetRegistryKeyValueBinary(HKEY hRoot, const CString& strKey,
                                              const CString& strName, const BYTE* pData,
                                              DWORD nCount, REGSAM /*samDesired*/) {
    RegistryValue value;
    value.type = REG_BINARY;
    if (nCount > 0) value.data.assign(reinterpret_cast<const char*>(pData), nCount);
    return AsResult(Store().SetValue(hRoot, strKey, strName, value));
}

LONG CZrCbRegistry::RegCopyTree(HKEY hSourceRoot, const CString& strSource, HKEY hTargetRoot,
                                const CString& strTarget) {
    return AsResult(Store().CopyTree(hSourceRoot, strSource, hTargetRoot, strTarget));
}

LONG CZrCbRegistry::RegDelTree(HKEY hRoot, const CString& strKey) {
    return AsResult(Store().DeleteTree(hRoot, strKey));
}
