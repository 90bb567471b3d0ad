#include "system/IniWriter.h"

#include <cerrno>
#include <cstring>
#include <utility>

#include <platform/Diagnostics.h>
#include <platform/LastError.h>

#include "system/FilePath.h"
#include "system/WholeFile.h"

namespace platform {

namespace {

// No settings file comes near this; a bigger one is not taken into memory.
constexpr std::size_t kLargestIniFile = std::size_t{16} * 1024 * 1024;

bool IsMissing(int error) {
    return error == ENOENT || error == ENOTDIR;
}

bool HasLineEnd(std::string_view text) {
    return text.find_first_of("\r\n") != text.npos;
}

// A name that would be read back as something else is refused, so that no caller's text can bring
// in lines or sections of its own.
bool AreWritable(std::string_view section, std::string_view key, std::string_view value) {
    const std::string_view name = TrimIniBlanks(key);
    if (HasLineEnd(section) || HasLineEnd(key) || HasLineEnd(value)) return false;
    return !name.empty() && name.front() != ';' && name.front() != '[' &&
           name.find('=') == std::string_view::npos;
}

} // namespace

int ReadIniText(const CString& localName, std::string& text) {
    const int error = ReadWholeFile(localName.GetString(), kLargestIniFile, text);
    if (error == 0 || IsMissing(error)) return 0;
    CString report;
    report.Format("The settings file %s cannot be read and counts as missing: %s",
                  localName.GetString(), std::strerror(error));
    ReportDiagnostic(Severity::failure, report);
    text.clear();
    return error;
}

IniWriter::IniWriter(const CString& localName)
    : m_fileName(BehindLinks(localName.GetString())), m_lock(m_fileName), m_document({}),
      m_error(Read()) {}

DWORD IniWriter::Read() {
    if (m_lock.Error() == EBUSY) {
        ReportDiagnostic(Severity::failure, "The settings file " + CString(m_fileName) +
                                                " is not changed: another program keeps it locked");
        return ERROR_BUSY;
    }
    if (m_lock.Error()) return ErrorFromErrno(m_lock.Error());
    std::string text;
    if (const int error = ReadIniText(CString(m_fileName), text)) return ErrorFromErrno(error);
    m_document = IniDocument(std::move(text));
    return ERROR_SUCCESS;
}

DWORD IniWriter::Set(const char* section, const char* key, const char* value) {
    if (!section || !key || !AreWritable(section, key, value ? value : ""))
        return ERROR_INVALID_PARAMETER;
    if (m_error) return m_error;
    if (value)
        m_document.Set(section, key, value);
    else if (m_document.Find(section, key))
        m_document.Remove(section, key);
    else
        return ERROR_SUCCESS; // nothing to remove
    m_isChanged = true;
    return ERROR_SUCCESS;
}

DWORD IniWriter::Commit() {
    if (m_error || !m_isChanged) return m_error;
    if (m_document.Text().size() > kLargestIniFile) return ErrorFromErrno(EFBIG);
    m_isChanged = false;
    return ErrorFromErrno(ReplaceWholeFile(m_fileName, m_document.Text()));
}

} // namespace platform
