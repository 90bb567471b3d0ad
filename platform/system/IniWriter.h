// Changing an INI file beside other threads and processes that do the same.
#pragma once

#include <string>

#include <platform/String.h>

#include "system/IniDocument.h"
#include "system/ReplaceLock.h"

namespace platform {

// 0 with the text; a missing file is an empty one. Anything else is reported, and the text empty.
int ReadIniText(const CString& localName, std::string& text);

// From its reading to its end nobody else changes the file. All results are system error numbers.
class IniWriter {
public:
    explicit IniWriter(const CString& localName);

    // Why the file cannot be changed, which has been reported; ERROR_SUCCESS when it can.
    DWORD Error() const { return m_error; }
    const IniDocument& Document() const { return m_document; }
    // A null value removes the key.
    DWORD Set(const char* section, const char* key, const char* value);
    // Replaces the file, if anything was changed.
    DWORD Commit();

private:
    DWORD Read();

    std::string m_fileName;
    ReplaceLock m_lock;
    IniDocument m_document;
    bool m_isChanged = false;
    DWORD m_error;
};

} // namespace platform
