// The file that a download goes into.
#pragma once

#include <string>
#include <string_view>

#include <platform/File.h>

// Collects small writes into large ones. Its operations are false when the system refuses them,
// with its text in Error(); what was written before stays.
class TargetFile {
public:
    ~TargetFile() { Close(); }

    // Creates or empties the file.
    bool Open(const CString& strFile);
    bool Write(std::string_view bytes);
    // Nothing that was written is held back.
    bool Flush();
    bool Close();
    const CString& Error() const { return m_error; }

private:
    template <class TAction>
    bool Try(TAction action);

    CFile m_file;
    std::string m_pending;
    CString m_error;
    bool m_isOpen = false;
};
