// Ctrl-C and its like as a request to stop.
#pragma once

#include <array>

#include <signal.h>

namespace zrhttp {

// While one exists, the first SIGINT, SIGTERM, SIGHUP or SIGQUIT only sets a mark, and a second
// one of its kind ends the process. A SIGHUP that is ignored (nohup) stays so.
class Interrupt {
public:
    Interrupt();
    ~Interrupt(); // puts back what handled the signals before
    Interrupt(const Interrupt&) = delete;
    Interrupt& operator=(const Interrupt&) = delete;

    static bool IsRequested();

    // Ends the process by the signal that has asked for it, so that whoever started it (a shell's
    // loop) sees that; returns when none has. For the end of main: nothing is cleaned up any more.
    static void EndProcess();

    static constexpr std::array kSignals{SIGINT, SIGTERM, SIGHUP, SIGQUIT};

private:
    std::array<struct sigaction, kSignals.size()> m_previous{};
};

} // namespace zrhttp
