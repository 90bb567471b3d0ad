// The processes of one browser as the system shows them.
#pragma once

#include <string>
#include <vector>

#include <sys/types.h>

namespace platform_test {

class BrowserProcesses {
public:
    // Waits until the browser with this profile directory runs its command line.
    explicit BrowserProcesses(const std::string& profile);

    pid_t Browser() const { return m_browser; }
    // Those that run now: the browser, what it has started, and who looks after it.
    std::vector<pid_t> All() const;
    // Whether all of them and the profile directory have gone, before that much time is over.
    bool AreGoneWithin(double seconds) const;
    bool HasListeningSocket() const;

private:
    bool IsAnythingLeft() const;

    std::string m_profile;
    pid_t m_browser = -1;
};

} // namespace platform_test
