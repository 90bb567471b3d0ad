// The browser's side of a DevTools conversation, in the hands of a test.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "browser/chromium/DevToolsConnection.h"

namespace platform_test {

struct Pipe {
    Pipe();
    platform::OwnedDescriptor read{-1};
    platform::OwnedDescriptor write{-1};

private:
    explicit Pipe(const int (&ends)[2]) : read(ends[0]), write(ends[1]) {}
    static Pipe Make();
};

class PipePeer {
    Pipe m_commands;
    Pipe m_answers;
    Pipe m_errors;
    std::string m_read;

public:
    // Made of the pipes' other ends. A test may let it go.
    std::shared_ptr<platform::DevToolsConnection> connection = platform::DevToolsConnection::Start(
        std::move(m_commands.write), std::move(m_answers.read), std::move(m_errors.read));

    // The next command, without its NUL; nothing at the end of the conversation. Waits for it.
    std::optional<std::string> NextText();
    // The same, parsed.
    nlohmann::json NextCommand();

    // These wait while the pipe is full.
    void Write(std::string_view bytes);
    void WriteMessage(const nlohmann::json& message);
    void WriteError(std::string_view bytes);

    void StopReading() { m_commands.read.Close(); }
    void StopWriting() { m_answers.write.Close(); }
    void StopErrors() { m_errors.write.Close(); }
};

} // namespace platform_test
