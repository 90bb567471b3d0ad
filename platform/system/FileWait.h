// Waiting for a file that another process holds.
#pragma once

#include <optional>
#include <string>

#include <sys/stat.h>

#include <platform/Types.h>

namespace platform {

// One wait, for as many attempts as it takes. As long as the file changes, others get on with it
// and so will this process; without a change it is given up after a second. What was given up is
// remembered for ten, in which next to no time is spent on the same file: many calls that meet it
// cost a second together. Any thread, one at a time.
class FileWait {
public:
    explicit FileWait(std::string name);
    // After an attempt that found the file held: pauses and says whether to try again.
    bool GoesOn();
    // The file turned out to be free.
    void Forget() const;

private:
    std::string m_name;
    std::optional<struct stat> m_seen;
    DWORD m_patience;
    DWORD m_unchanged = 0; // milliseconds waited since the last change
    DWORD m_waited = 0;    // milliseconds in all
};

} // namespace platform
