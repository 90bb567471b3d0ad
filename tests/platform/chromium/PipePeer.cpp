#include "platform/chromium/PipePeer.h"

#include <array>
#include <stdexcept>

#include <fcntl.h>
#include <unistd.h>

namespace platform_test {
namespace {

void WriteTo(const platform::OwnedDescriptor& descriptor, std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t count = write(descriptor.Get(), bytes.data(), bytes.size());
        if (count <= 0) throw std::runtime_error("the connection reads no more");
        bytes.remove_prefix(static_cast<std::size_t>(count));
    }
}

} // namespace

Pipe Pipe::Make() {
    int ends[2];
    if (pipe2(ends, O_CLOEXEC) != 0) throw std::runtime_error("no pipe");
    return Pipe(ends);
}

Pipe::Pipe() : Pipe(Make()) {}

std::optional<std::string> PipePeer::NextText() {
    std::array<char, 65536> chunk;
    std::size_t end = m_read.find('\0');
    while (end == std::string::npos) {
        const ssize_t count = read(m_commands.read.Get(), chunk.data(), chunk.size());
        if (count <= 0) return std::nullopt;
        const std::size_t before = m_read.size();
        m_read.append(chunk.data(), static_cast<std::size_t>(count));
        end = m_read.find('\0', before);
    }
    std::string text = m_read.substr(0, end);
    m_read.erase(0, end + 1);
    return text;
}

nlohmann::json PipePeer::NextCommand() {
    return nlohmann::json::parse(NextText().value_or("null"));
}

void PipePeer::Write(std::string_view bytes) {
    WriteTo(m_answers.write, bytes);
}

void PipePeer::WriteMessage(const nlohmann::json& message) {
    std::string text = message.dump();
    text.push_back('\0');
    Write(text);
}

void PipePeer::WriteError(std::string_view bytes) {
    WriteTo(m_errors.write, bytes);
}

} // namespace platform_test
