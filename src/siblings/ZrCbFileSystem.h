// File helpers of the client. Paths may be drive paths.
#pragma once

#include <ByteBuffer.h>
#include <platform/String.h>

enum EZrCbResult { eResult_Failed = 0, eResult_Ok = 1 };

class CZrCbFileSystem {
public:
    // The non-empty texts joined with one separator between two of them.
    static CString CombinePaths(const CString& str1, const CString& str2, const CString& str3,
                                const CString& str4, const CString& str5, const CString& str6,
                                const CString& str7, const CString& str8, const CString& str9,
                                const CString& str10);
    // Directory and file name.
    static CString CombinePaths(const CString& strDirectory, const CString& strFileName);
    static int FileExists(const CString& strPath);
    // The file is gone afterwards if it existed; eResult_Failed when it could not be removed.
    static EZrCbResult DeleteFileSafely(const CString& strPath);
    // Drive ("c:" or empty), directory with its last separator, name, extension with its dot.
    static void SplitPath(const CString& strPath, CString& strDrive, CString& strDirectory,
                          CString& strName, CString& strExtension);
    // 1 with the whole file; 0 with strErr naming path and reason.
    static int GetFileAsText(const CString& strPath, CString& strContent, CString& strErr);
    // As above; the bytes are appended to the buffer, which stays as it was on failure.
    static int GetFileAsBinary(const CString& strPath, CByteBuffer* pTarget, CString& strErr);
};
