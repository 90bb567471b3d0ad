// Files. Paths may be the client's drive paths ("c:\..."), see UserPaths.h.
#pragma once

#include <cstdint>

#include "Export.h"
#include "String.h"

ZRHB_EXPORT_BEGIN

class CFile {
public:
    enum OpenFlags : UINT {
        modeRead = 0x0000,
        modeWrite = 0x0001,
        modeCreate = 0x1000,     // create, or empty an existing file
        modeNoTruncate = 0x2000, // with modeCreate: keep an existing file's content
        typeText = 0x4000,       // CStdioFile: every "\n" written becomes "\r\n", also behind "\r"
        // What the host platform says with a file's access list:
        modePrivate = 0x10000, // a new file belongs to the user alone (mode 0600)
        modeAppend = 0x20000,  // every write goes to the end, also beside other writers
        // An existing pipe, device or socket is refused (ERROR_ACCESS_DENIED), so that neither
        // opening nor writing waits for somebody at its other end.
        modeRegular = 0x40000,
    };

    CFile() = default;
    virtual ~CFile();
    CFile(const CFile&) = delete;
    CFile& operator=(const CFile&) = delete;

    // FALSE when the file cannot be opened, or one is open; GetLastError() tells why. Without
    // modeCreate the file must exist.
    BOOL Open(const char* pszFileName, UINT nOpenFlags);
    // Throws CFileException when not everything could be written.
    virtual void Write(const void* pData, UINT nCount);
    // Bytes read, 0 at the end. Throws CFileException.
    UINT Read(void* pBuffer, UINT nCount);
    // Throws CFileException when no file is open.
    std::uint64_t GetLength() const;
    // Throws CFileException when the system reports a late write error.
    void Close();

    // Both throw CFileException. Remove takes files and links only, no directory or device; Rename
    // replaces an existing target.
    static void Remove(const char* pszFileName);
    static void Rename(const char* pszOldName, const char* pszNewName);
    // TRUE when pszFileName is an existing file (not a directory).
    static BOOL Exists(const char* pszFileName);
    static BOOL IsDirectory(const char* pszFileName);

private:
    int m_descriptor = -1;
    CString m_name;
};

// A file written in text mode.
class CStdioFile : public CFile {
public:
    BOOL Open(const char* pszFileName, UINT nOpenFlags);
    // Throws CFileException when not everything could be written.
    void WriteString(const CString& strText);

private:
    bool m_isText = false;
};

ZRHB_EXPORT_END
