#include "zrhttp/Interrupt.h"

#include <atomic>

#include <sys/prctl.h>

namespace zrhttp {
namespace {

// Set by the signal handler, which can reach nothing but process-wide state. 0: none has come.
std::atomic<int> g_signal{0};
static_assert(std::atomic<int>::is_always_lock_free);

void Request(int signalNumber) {
    g_signal.store(signalNumber);
}

void Install(int signalNumber, struct sigaction& previous) {
    sigaction(signalNumber, nullptr, &previous);
    if (previous.sa_handler == SIG_IGN) return; // nohup, or the background of a script
    struct sigaction action {};
    action.sa_handler = Request;
    // SA_RESETHAND: the second signal finds the default action and ends a process that hangs.
    // SA_RESTART: reads and writes under way are not cut short.
    action.sa_flags = static_cast<int>(SA_RESETHAND) | SA_RESTART;
    sigemptyset(&action.sa_mask);
    sigaction(signalNumber, &action, nullptr);
}

} // namespace

Interrupt::Interrupt() {
    for (std::size_t i = 0; i < kSignals.size(); ++i)
        Install(kSignals[i], m_previous[i]);
}

Interrupt::~Interrupt() {
    for (std::size_t i = 0; i < kSignals.size(); ++i)
        sigaction(kSignals[i], &m_previous[i], nullptr);
}

bool Interrupt::IsRequested() {
    return g_signal.load() != 0;
}

void Interrupt::EndProcess() {
    const int signalNumber = g_signal.load();
    if (signalNumber == 0) return;
    prctl(PR_SET_DUMPABLE, 0); // SIGQUIT leaves a core otherwise, with all that was secret
    signal(signalNumber, SIG_DFL);
    sigset_t signals;
    sigemptyset(&signals);
    sigaddset(&signals, signalNumber);
    pthread_sigmask(SIG_UNBLOCK, &signals, nullptr);
    raise(signalNumber);
}

} // namespace zrhttp
