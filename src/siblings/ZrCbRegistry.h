// Registry helpers of the client. Results are system error numbers, 0 for success.
#pragma once

#include <platform/Registry.h>

class CZrCbRegistry {
public:
    // nSize: room in bytes on entry, bytes read on return; 234 (more data) with the size needed.
    static LONG GetRegistryKeyValueBinary(HKEY hRoot, const CString& strKey, const CString& strName,
                                          BYTE* pBuffer, DWORD& nSize, REGSAM samDesired);
    static LONG SetRegistryKeyValueBinary(HKEY hRoot, const CString& strKey, const CString& strName,
                                          const BYTE* pData, DWORD nCount, REGSAM samDesired);
    // Copies the key with all its values and subkeys, as one transaction.
    static LONG RegCopyTree(HKEY hSourceRoot, const CString& strSource, HKEY hTargetRoot,
                            const CString& strTarget);
    // Deletes the key and all below it, as one transaction.
    static LONG RegDelTree(HKEY hRoot, const CString& strKey);
};
