// What a test program must not leave behind.
#pragma once

#include <set>
#include <string>
#include <vector>

namespace test_support {

// From now on, processes whose parent has ended count as children of this program, so that
// RunningChildren sees the whole tree that the tests started.
void AdoptOrphans();

// "PID (name)" of each child process that still runs. One that is just ending gets a moment.
std::vector<std::string> RunningChildren();

// Finds browsers' profile directories that have been left behind since it was made.
class ProfileDirectories {
public:
    ProfileDirectories();
    // New ones that no process uses. One whose browser is just ending gets a moment; those of
    // other programs' browsers do not count.
    std::vector<std::string> LeftBehind() const;

private:
    std::vector<std::string> AbandonedNow() const;

    std::set<std::string> m_before;
};

} // namespace test_support
