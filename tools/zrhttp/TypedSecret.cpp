#include "zrhttp/TypedSecret.h"

#include <cerrno>
#include <cstdio>
#include <cstring>

#include <poll.h>
#include <termios.h>
#include <unistd.h>

#include "zrhttp/Errors.h"
#include "zrhttp/HttpGrammar.h"
#include "zrhttp/Interrupt.h"
#include "zrhttp/Printable.h"

namespace zrhttp {
namespace {

constexpr int kLook = 100; // ms
constexpr std::size_t kLongestLine = 4096;

// The terminal shows nothing of what is typed. What is typed beyond the secret is dropped with it.
class HiddenTyping {
public:
    HiddenTyping() {
        m_isSet = tcgetattr(STDIN_FILENO, &m_before) == 0;
        termios hidden = m_before;
        hidden.c_lflag &= ~static_cast<tcflag_t>(ECHO);
        hidden.c_cc[VSUSP] = _POSIX_VDISABLE; // the shell would get a terminal that shows nothing
        if (m_isSet) tcsetattr(STDIN_FILENO, TCSADRAIN, &hidden);
    }
    ~HiddenTyping() {
        if (m_isSet) tcsetattr(STDIN_FILENO, TCSAFLUSH, &m_before);
        std::fputs("\n", stderr); // that of the user has not been shown
    }
    HiddenTyping(const HiddenTyping&) = delete;
    HiddenTyping& operator=(const HiddenTyping&) = delete;

private:
    termios m_before{};
    bool m_isSet = false;
};

void WaitForLine() {
    pollfd terminal{STDIN_FILENO, POLLIN, 0};
    while (poll(&terminal, 1, kLook) <= 0)
        if (Interrupt::IsRequested()) throw SystemError("stopped by an interrupt");
}

} // namespace

std::string TypedSecret(const std::string& name) {
    const Interrupt interrupt;
    const HiddenTyping hidden;
    std::fprintf(stderr, "%s: ", PrintableLine(name).c_str());
    WaitForLine();
    std::string line(kLongestLine, '\0');
    const ssize_t count = read(STDIN_FILENO, line.data(), line.size());
    if (count < 0)
        throw SystemError(std::string("cannot read the terminal: ") + std::strerror(errno));
    line.resize(static_cast<std::size_t>(count));
    if (line.ends_with('\n')) line.pop_back();
    if (HasControls(line))
        throw UsageError("--secret: a control character was typed; give the secret by a file");
    return line;
}

} // namespace zrhttp
