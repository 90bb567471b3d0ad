// Runs the command-line tool as a person or a script would.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include <sys/types.h>

namespace test_support {

struct ToolRun {
    int exitStatus = -1; // 128 + N when signal N ended it
    std::string output;
    std::string error;
};

// A running tool; its standard input is a file with the given bytes. It inherits the environment,
// but uses no proxy for the loopback interface. The destructor ends it if it still runs.
class ToolProcess {
public:
    explicit ToolProcess(const std::vector<std::string>& arguments, std::string_view input = "");
    ~ToolProcess();
    ToolProcess(const ToolProcess&) = delete;
    ToolProcess& operator=(const ToolProcess&) = delete;

    void Signal(int signalNumber) const;
    // Waits for its end; a tool that takes longer than half a minute is killed.
    ToolRun Wait();

private:
    int m_input;
    int m_output;
    int m_error;
    pid_t m_process = -1;
};

ToolRun RunTool(const std::vector<std::string>& arguments, std::string_view input = "");

// With standard output and standard error on one terminal, whose text comes back as `output`.
ToolRun RunToolOnTerminal(const std::vector<std::string>& arguments);

} // namespace test_support
