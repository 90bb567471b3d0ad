// What a test program must not leave behind.
#pragma once

#include <string>
#include <vector>

namespace test_support {

// From now on, processes whose parent has ended count as children of this program, so that
// RunningChildren sees the whole tree that the tests started.
void AdoptOrphans();

// "PID (name)" of each child process that still runs. One that is just ending gets a moment.
std::vector<std::string> RunningChildren();

} // namespace test_support
