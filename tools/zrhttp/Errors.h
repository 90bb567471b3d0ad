// What ends a subcommand early; main prints the text and exits with the status.
#pragma once

#include <stdexcept>
#include <string>

#include "zrhttp/ExitStatus.h"

namespace zrhttp {

class ToolError : public std::runtime_error {
public:
    ToolError(int exitStatus, const std::string& text)
        : std::runtime_error(text), m_exitStatus(exitStatus) {}
    int ExitStatus() const { return m_exitStatus; }

private:
    int m_exitStatus;
};

// Something about the call that the person can put right (exit status 2).
class UsageError : public ToolError {
public:
    explicit UsageError(const std::string& text) : ToolError(kWrongUsage, text) {}
};

// Something about the system: a file, a full disk (exit status 1).
class SystemError : public ToolError {
public:
    explicit SystemError(const std::string& text) : ToolError(kFailure, text) {}
};

} // namespace zrhttp
