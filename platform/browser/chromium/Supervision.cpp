#include "browser/chromium/Supervision.h"

#include <chrono>
#include <filesystem>
#include <thread>

#include <poll.h>

namespace platform {
namespace {

using namespace std::chrono_literals;
using SteadyClock = std::chrono::steady_clock;

constexpr auto kLook = 20ms;
constexpr auto kBrowserPatience = 2s;
constexpr auto kEndPatience = 10s;

} // namespace

Supervision::Supervision(LockedProfile profile, OwnedDescriptor life, OwnedDescriptor hold)
    : m_profile(std::move(profile)), m_life(std::move(life)), m_hold(std::move(hold)) {}

void Supervision::EndIfAlone() {
    {
        const std::lock_guard lock(m_mutex);
        pollfd polled{m_life.Get(), 0, 0};
        const bool hasReader = m_life.IsOpen() && poll(&polled, 1, 0) == 0;
        if (hasReader) return;
    }
    End();
}

// The lock goes first: from here on anybody may remove the directory.
void Supervision::End() {
    {
        const std::lock_guard lock(m_mutex);
        m_profile.lock.Close();
        m_hold.Close();
        m_life.Close();
    }
    RemoveIfAbandoned(m_profile.path);
}

void Supervision::SeeToTheEnd() {
    const auto begin = SteadyClock::now();
    std::error_code error;
    while (std::filesystem::exists(m_profile.path, error) &&
           SteadyClock::now() - begin < kEndPatience) {
        if (SteadyClock::now() - begin > kBrowserPatience)
            End();
        else
            EndIfAlone();
        std::this_thread::sleep_for(kLook);
    }
    End();
}

} // namespace platform
