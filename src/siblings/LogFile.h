// The file of the client's log.
#pragma once

#include <mutex>
#include <string_view>

#include <platform/String.h>

// One for the process. zrhttpbase3.log in the log directory as it is named at the time of writing;
// the directory is made when it is missing.
class LogFile {
public:
    static LogFile& Instance();

    // Appends a line with one write. A file that would grow beyond 1 MiB becomes zrhttpbase3.log.1
    // first. False when the line could not be written; a pipe or a device under the file's name is
    // not written to, since nobody may ever read there. Any thread.
    bool Append(std::string_view line);

private:
    void RotateFor(const CString& strFileName, std::string_view line);

    std::mutex m_lock;
};
