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

// A running tool that has a terminal of its own for what it reads and writes. The destructor ends
// it if it still runs.
class ToolOnTerminal {
public:
    // Another program (a shell, which gets the tool as $ZRHTTP) may take its place.
    explicit ToolOnTerminal(const std::vector<std::string>& arguments,
                            const std::string& program = ZRHTTP_TOOL);
    ~ToolOnTerminal();
    ToolOnTerminal(const ToolOnTerminal&) = delete;
    ToolOnTerminal& operator=(const ToolOnTerminal&) = delete;

    // Waits until the terminal shows the text, and types.
    void TypeAfter(std::string_view text, std::string_view keys);
    // Whether the terminal shows what is typed.
    bool IsEchoing() const;
    // Waits for its end; `output` is all that the terminal has shown.
    ToolRun Wait();

private:
    int m_terminal = -1;
    pid_t m_process = -1;
    std::string m_shown;
};

ToolRun RunToolOnTerminal(const std::vector<std::string>& arguments);

} // namespace test_support
