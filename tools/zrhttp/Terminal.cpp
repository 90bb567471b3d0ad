#include "zrhttp/Terminal.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <platform/Secrets.h>
#include <unistd.h>

#include "zrhttp/CharacterSets.h"
#include "zrhttp/Errors.h"
#include "zrhttp/Printable.h"
#include "zrhttp/TerminalEncoding.h"

namespace zrhttp {
namespace {

bool HasColours() {
    const char* noColour = std::getenv("NO_COLOR");
    const char* terminal = std::getenv("TERM");
    return IsTerminal(STDERR_FILENO) && (!noColour || !*noColour) && terminal &&
           std::strcmp(terminal, "dumb") != 0;
}

std::string MessageLine(std::string_view utf8) {
    return PrintableLine(platform::MaskSecrets(utf8));
}

} // namespace

bool IsTerminal(int descriptor) {
    return isatty(descriptor) == 1;
}

void PrintError(std::string_view utf8) {
    const char* name = HasColours() ? "\033[31mzrhttp:\033[0m" : "zrhttp:";
    std::fprintf(stderr, "%s %s\n", name, MessageLine(utf8).c_str());
}

void PrintNote(std::string_view utf8) {
    std::fprintf(stderr, "%s\n", MessageLine(utf8).c_str());
}

void WriteOutput(std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t written = write(STDOUT_FILENO, bytes.data(), bytes.size());
        if (written < 0 && errno == EINTR) continue;
        if (written < 0)
            throw SystemError(std::string("cannot write to standard output: ") +
                              std::strerror(errno));
        bytes.remove_prefix(static_cast<std::size_t>(written));
    }
}

void WritePage(std::string_view bytes) {
    if (!IsTerminal(STDOUT_FILENO)) return WriteOutput(bytes);
    std::string text = TextFromBytes(bytes);
    if (!text.empty() && text.back() != '\n') text += '\n';
    WriteText(text);
}

void WriteText(std::string_view utf8) {
    WriteOutput(
        TerminalFromUtf8(IsTerminal(STDOUT_FILENO) ? PrintableText(utf8) : std::string(utf8)));
}

Progress::Progress()
    : m_isShown(IsTerminal(STDERR_FILENO)), m_begin(std::chrono::steady_clock::now()) {}

Progress::~Progress() {
    if (m_hasLine) std::fputs("\r\033[K", stderr);
}

void Progress::Update(std::uint64_t bytes) {
    if (!m_isShown) return;
    const std::chrono::duration<double> elapsed = std::chrono::steady_clock::now() - m_begin;
    std::fprintf(stderr, "\r\033[K%llu bytes, %.1f s", static_cast<unsigned long long>(bytes),
                 elapsed.count());
    std::fflush(stderr);
    m_hasLine = true;
}

} // namespace zrhttp
