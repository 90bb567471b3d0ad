// The thread that serves one connection to an X server.
#pragma once

#include <atomic>
#include <future>
#include <memory>
#include <mutex>
#include <thread>

#include "window/display/CommandQueue.h"
#include "window/display/XConnection.h"

namespace platform {

// For the calling thread, which speaks to a server: a write to one that has gone must not kill the
// process, and signals meant for the program go to its own threads.
void BlockSignals();

class DisplayThread {
public:
    explicit DisplayThread(std::unique_ptr<XConnection> connection);
    ~DisplayThread() { End(); }
    DisplayThread(const DisplayThread&) = delete;
    DisplayThread& operator=(const DisplayThread&) = delete;

    const std::shared_ptr<CommandQueue>& Commands() const { return m_commands; }
    // The server has gone.
    bool IsBroken() const { return m_isBroken; }
    // Handles what was posted before, and waits for the thread: not for ever, should the server
    // not answer. Any thread but this one; again does nothing.
    void End();

private:
    void Run();
    void Serve(DisplayWindows& windows);
    void WaitForNews();

    const std::unique_ptr<XConnection> m_connection;
    const std::shared_ptr<CommandQueue> m_commands = std::make_shared<CommandQueue>();
    std::atomic<bool> m_isBroken{false};
    std::promise<void> m_ending;
    std::mutex m_endMutex;
    std::thread m_thread;
};

} // namespace platform
