// Ctrl-C as a request to stop.
#pragma once

#include <signal.h>

namespace zrhttp {

// While one exists, the first SIGINT or SIGTERM only sets a mark; a second one ends the process.
class Interrupt {
public:
    Interrupt();
    ~Interrupt(); // puts back what handled the signals before
    Interrupt(const Interrupt&) = delete;
    Interrupt& operator=(const Interrupt&) = delete;

    static bool IsRequested();

private:
    struct sigaction m_previousInt {};
    struct sigaction m_previousTerm {};
};

} // namespace zrhttp
