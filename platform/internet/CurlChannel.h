// A transfer that the calling thread drives itself, and the connections it leaves for the next one.
#pragma once

#include <chrono>
#include <optional>

#include "internet/CurlHandles.h"

namespace platform {

// Used by one thread at a time, which may change; Wake by any.
class CurlChannel {
public:
    CurlChannel();
    ~CurlChannel();
    CurlChannel(const CurlChannel&) = delete;
    CurlChannel& operator=(const CurlChannel&) = delete;

    // Where the transfer is set up, while it does not run.
    CURL* Easy() const { return m_easy.get(); }
    void Start();
    // Does what can be done without waiting; the outcome as soon as the transfer has ended.
    std::optional<CURLcode> Work();
    // Waits until there is something to do, but no longer than that.
    void Wait(std::chrono::milliseconds time);
    // The body callback, which had paused the transfer, takes bytes again (and is called in here).
    void Resume();
    // Ends a wait, or the next one.
    void Wake() { curl_multi_wakeup(m_multi.get()); }
    // Its connection is closed when the transfer has not ended.
    void Stop();

private:
    CurlMulti m_multi;
    CurlEasy m_easy;
    bool m_isStarted = false;
};

} // namespace platform
