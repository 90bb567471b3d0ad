// Private-profile (INI) files. Sections and keys are compared without regard to case, the first
// match wins, blanks around keys and values and one pair of quotes around a value are stripped.
// Paths may be drive paths. A missing or unreadable file has no sections.
#pragma once

#include <memory>

#include "Export.h"
#include "String.h"

namespace platform {
class IniIndex;
class IniWriter;
} // namespace platform

ZRHB_EXPORT_BEGIN

// The leading decimal number of the entry (with an optional "-"), 0 when it does not begin with
// one, nDefault when file, section or key is missing.
UINT GetPrivateProfileIntA(const char* pszSection, const char* pszKey, int nDefault,
                           const char* pszFileName);

// Copies the value, or the default, cut to nSize - 1 characters; returns the characters copied
// without the NUL. pszSection and pszKey must not be null.
DWORD GetPrivateProfileStringA(const char* pszSection, const char* pszKey, const char* pszDefault,
                               char* pszBuffer, DWORD nSize, const char* pszFileName);

// The names of all sections, in the order of the file, each with its NUL, then one more NUL.
// Returns the characters copied without that last NUL, nSize - 2 when they did not fit.
DWORD GetPrivateProfileSectionNamesA(char* pszBuffer, DWORD nSize, const char* pszFileName);

// Sets a value; creates file and section. Other lines, comments included, stay as they are. The
// file is replaced as a whole (written beside it, then renamed) and is made with mode 0600. A null
// value removes the key. Threads and processes that write the same file do so one after the other;
// one that keeps it locked without changing it is waited for for a second. FALSE on failure, with
// GetLastError() (ERROR_BUSY after such a wait, which is reported); the old file then stands.
BOOL WritePrivateProfileStringA(const char* pszSection, const char* pszKey, const char* pszValue,
                                const char* pszFileName);

namespace platform {

// While it lives, what its thread reads from this file is what the file held when it was made.
// Many reads of one file then take one look at it, and agree with each other. Not to be made for a
// file that the thread writes meanwhile.
class IniSnapshot {
public:
    explicit IniSnapshot(const CString& strFileName);
    ~IniSnapshot();
    IniSnapshot(const IniSnapshot&) = delete;
    IniSnapshot& operator=(const IniSnapshot&) = delete;

private:
    std::unique_ptr<const IniIndex> m_index;
    const IniIndex* m_outer;
};

// While it lives, nobody else writes into this file, or into others of its directory; what its
// thread writes into it is read back by this thread, and reaches the file with Commit(): all of it
// or nothing. One at a time on a thread.
class IniUpdate {
public:
    explicit IniUpdate(const CString& strFileName);
    ~IniUpdate();
    IniUpdate(const IniUpdate&) = delete;
    IniUpdate& operator=(const IniUpdate&) = delete;

    // As WritePrivateProfileStringA, whose results before it tell what was taken.
    BOOL Commit();

private:
    std::unique_ptr<IniWriter> m_writer; // null for a name that is no file's
};

} // namespace platform

ZRHB_EXPORT_END
