// Starting programs.
#pragma once

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <sys/types.h>

namespace platform {

struct ProgramStart {
    std::vector<std::string> command; // the program (looked for on PATH) and its arguments
    // Descriptors that it gets: ours, and the number there. 0, 1 and 2 not named are the null
    // device; nothing else is inherited.
    std::vector<std::pair<int, int>> descriptors;
    std::vector<std::string> environment; // "NAME=value"; empty: ours
};

// In a session of its own, with default signal handling. Empty with errno when it cannot be
// started.
std::optional<pid_t> StartProgram(const ProgramStart& start);
// Waits for it. True when it ended with status 0.
bool WaitForProgram(pid_t program);
// Starts a program without input or output and waits for it.
bool RunProgram(std::vector<std::string> command);

} // namespace platform
