// Worker threads.
#pragma once

#include <functional>
#include <memory>

#include "Export.h"
#include "Services.h"
#include "Types.h"

ZRHB_EXPORT_BEGIN

constexpr DWORD WAIT_ABANDONED = 0x80;
constexpr DWORD WAIT_FAILED = 0xFFFFFFFF;
constexpr DWORD INFINITE = 0xFFFFFFFF;

namespace platform {

// A thread that has been started, also when it has ended. The thread runs on when the object goes.
class WorkerThread {
public:
    virtual ~WorkerThread() = default;
    // Waits until the thread has ended, at most dwMilliseconds: WAIT_OBJECT_0, WAIT_TIMEOUT or
    // WAIT_FAILED. Messages that other threads send to windows of the calling thread are handled
    // meanwhile, posted ones stay.
    virtual DWORD Wait(DWORD dwMilliseconds) = 0;
};

class WorkerThreads {
public:
    virtual ~WorkerThreads() = default;
    static WorkerThreads& Real();
    // Runs the procedure on a thread of its own, with a message queue. Null with GetLastError()
    // when no thread could be started. A thread does not end before those that it has started;
    // leaving main waits for them, handling the messages that they send.
    virtual std::shared_ptr<WorkerThread> Start(std::function<void()> procedure) = 0;
};

} // namespace platform

ZRHB_EXPORT_END
