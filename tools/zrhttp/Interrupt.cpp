#include "zrhttp/Interrupt.h"

#include <atomic>

namespace zrhttp {
namespace {

// Set by the signal handler, which can reach nothing but process-wide state.
std::atomic<bool> g_isRequested{false};
static_assert(std::atomic<bool>::is_always_lock_free);

void Request(int) {
    g_isRequested.store(true);
}

void Install(int signalNumber, struct sigaction& previous) {
    struct sigaction action {};
    action.sa_handler = Request;
    // SA_RESETHAND: the second signal finds the default action and ends a process that hangs.
    // SA_RESTART: reads and writes under way are not cut short.
    action.sa_flags = static_cast<int>(SA_RESETHAND) | SA_RESTART;
    sigemptyset(&action.sa_mask);
    sigaction(signalNumber, &action, &previous);
}

} // namespace

Interrupt::Interrupt() {
    g_isRequested.store(false);
    Install(SIGINT, m_previousInt);
    Install(SIGTERM, m_previousTerm);
}

Interrupt::~Interrupt() {
    sigaction(SIGINT, &m_previousInt, nullptr);
    sigaction(SIGTERM, &m_previousTerm, nullptr);
}

bool Interrupt::IsRequested() {
    return g_isRequested.load();
}

} // namespace zrhttp
