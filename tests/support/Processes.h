// The machine's processes as the system shows them.
#pragma once

#include <string>
#include <vector>

#include <sys/types.h>

namespace test_support {

struct Process {
    pid_t id = -1;
    std::string name;
    char state = 'X';
    pid_t parent = -1;
    pid_t group = -1;
    std::string commandLine; // the words, each ended by a NUL

    // Not one that has ended and waits to be collected.
    bool IsRunning() const { return state != 'Z' && state != 'X'; }
    bool HasInCommandLine(const std::string& text) const {
        return commandLine.find(text) != std::string::npos;
    }
};

std::vector<Process> AllProcesses();

} // namespace test_support
