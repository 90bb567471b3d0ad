#include "siblings/LogFile.h"

#include <cstdint>

#include <platform/Exceptions.h>
#include <platform/File.h>
#include <platform/UserPaths.h>

namespace {

constexpr std::uint64_t kLargestLog = 1024 * 1024; // bytes

// True when the file work came to its end.
template <class TWork>
bool Succeeds(TWork work) {
    try {
        return work();
    } catch (CFileException* exception) {
        exception->Delete();
        return false;
    }
}

} // namespace

LogFile& LogFile::Instance() {
    static LogFile file;
    return file;
}

void LogFile::RotateFor(const CString& strFileName, std::string_view line) {
    std::uint64_t length = 0;
    {
        CFile file;
        if (!file.Open(strFileName, CFile::modeRead | CFile::modeRegular)) return;
        length = file.GetLength();
    }
    if (length > 0 && length + line.size() > kLargestLog)
        CFile::Rename(strFileName, strFileName + ".1");
}

bool LogFile::Append(std::string_view line) {
    const std::lock_guard guard(m_lock);
    const CString directory = platform::LogDirectory();
    const CString fileName = directory + "/zrhttpbase3.log";
    if (!platform::MakeDirectory(directory)) return false;
    // A log that cannot be put aside goes on growing rather than lose records.
    Succeeds([&] {
        RotateFor(fileName, line);
        return true;
    });
    return Succeeds([&] {
        CFile file;
        if (!file.Open(fileName, CFile::modeWrite | CFile::modeCreate | CFile::modeNoTruncate |
                                     CFile::modePrivate | CFile::modeAppend | CFile::modeRegular))
            return false;
        file.Write(line.data(), static_cast<UINT>(line.size()));
        file.Close();
        return true;
    });
}
