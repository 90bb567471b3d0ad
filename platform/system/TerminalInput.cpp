#include "system/TerminalInput.h"

#include <cerrno>
#include <csignal>

#include <poll.h>
#include <unistd.h>

namespace platform {
namespace {

constexpr int kLookMilliseconds = 100;
constexpr std::size_t kLongestLine = 4096; // of a terminal in line mode

// In line mode a terminal has something to read when a line is complete.
bool WaitForLine(const std::function<bool()>& isWithdrawn) {
    pollfd terminal{STDIN_FILENO, POLLIN, 0};
    while (!isWithdrawn()) {
        const int count = ::poll(&terminal, 1, kLookMilliseconds);
        if (count > 0) return true;
        if (count < 0 && errno != EINTR) return false;
    }
    ::tcflush(STDIN_FILENO, TCIFLUSH); // a begun answer is none to the next question
    return false;
}

} // namespace

bool ReadTerminalLine(std::string& line, const std::function<bool()>& isWithdrawn) {
    if (!WaitForLine(isWithdrawn)) return false;
    line.resize(kLongestLine);
    ssize_t count = 0;
    do
        count = ::read(STDIN_FILENO, line.data(), line.size());
    while (count < 0 && errno == EINTR);
    line.resize(count > 0 ? static_cast<std::size_t>(count) : 0);
    if (line.ends_with('\n')) line.pop_back();
    return count > 0;
}

HiddenTyping::HiddenTyping() {
    m_isSet = ::tcgetattr(STDIN_FILENO, &m_before) == 0;
    termios hidden = m_before;
    hidden.c_lflag &= ~static_cast<tcflag_t>(ECHO | ISIG);
    hidden.c_cc[VEOL] = m_before.c_cc[VINTR];
    if (m_isSet) ::tcsetattr(STDIN_FILENO, TCSADRAIN, &hidden);
}

HiddenTyping::~HiddenTyping() {
    if (m_isSet) ::tcsetattr(STDIN_FILENO, TCSADRAIN, &m_before);
    // As the terminal does it: the shell whose loop this runs in is to know, too.
    if (m_isInterrupted) ::kill(0, SIGINT);
}

bool HiddenTyping::TakeInterrupt(const std::string& line) {
    m_isInterrupted = m_isSet && m_before.c_cc[VINTR] != _POSIX_VDISABLE && !line.empty() &&
                      static_cast<cc_t>(line.back()) == m_before.c_cc[VINTR];
    return m_isInterrupted;
}

} // namespace platform
