// Files that have their name only when they are complete.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "Export.h"

ZRHB_EXPORT_BEGIN

namespace platform {

// The new content of a file. Until Commit the file itself stays as it is, and without Commit
// nothing is left behind: where the file system can do that (O_TMPFILE), the content has no name
// before, so that not even a killed process leaves any; elsewhere it is in a file beside the target
// ("NAME.XXXXXX", for the user alone), which the destructor removes. A link stays a link, and what
// it leads to is replaced. What is no regular file (a device, a pipe) is written as it is, and
// opened with the first bytes. One thread at a time.
//
// Operations return a system error number (errno), 0 for success; after a failure there is nothing
// more to do but to let the object go.
class FileReplacement {
public:
    enum class Access {
        shared,   // of the file that is replaced, with its owner where possible; of a new one as
                  // the user's mask says
        userOnly, // 0600; on the disk when Commit returns
    };

    FileReplacement() = default;
    ~FileReplacement();
    FileReplacement(const FileReplacement&) = delete;
    FileReplacement& operator=(const FileReplacement&) = delete;

    // Once. EISDIR for a directory, EACCES for a file that may not be written. The name is one of
    // the system, no drive path.
    int Open(const std::string& name, Access access);
    int Write(std::string_view bytes);
    // Gives the content its name.
    int Commit();

    // Opens the content in this process, until Commit, for those who take a file's name.
    std::string WorkingName() const;
    // Bytes so far; 0 for what is no regular file.
    std::uint64_t Length() const;

private:
    int OpenContent(unsigned mode);
    int TakeName();

    std::string m_target;    // links followed
    std::string m_temporary; // empty when the content has no name
    int m_descriptor = -1;
    bool m_isSpecial = false;
    bool m_isFlushed = false; // to the disk
};

} // namespace platform

ZRHB_EXPORT_END
