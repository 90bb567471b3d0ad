// Writing to a connection that the peer has closed.
#pragma once

#include <csignal>
#include <ctime>

#include <signal.h>

namespace platform {

// While it lives, such a write of this thread fails without a signal, which would end a program
// that has made no provision for it. (The transfer library would change the handling for the whole
// process.)
class SigpipeGuard {
public:
    SigpipeGuard() : m_pipe(Pipe()) { pthread_sigmask(SIG_BLOCK, &m_pipe, &m_before); }
    ~SigpipeGuard() {
        if (sigismember(&m_before, SIGPIPE) == 1) return; // the thread's own affair
        const timespec noTime{};
        sigtimedwait(&m_pipe, nullptr, &noTime);
        pthread_sigmask(SIG_SETMASK, &m_before, nullptr);
    }
    SigpipeGuard(const SigpipeGuard&) = delete;
    SigpipeGuard& operator=(const SigpipeGuard&) = delete;

private:
    static sigset_t Pipe() {
        sigset_t set;
        sigemptyset(&set);
        sigaddset(&set, SIGPIPE);
        return set;
    }

    const sigset_t m_pipe;
    sigset_t m_before;
};

} // namespace platform
