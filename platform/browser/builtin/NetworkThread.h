// The thread that does a browser object's network work.
#pragma once

#include <chrono>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <variant>
#include <vector>

#include <curl/curl.h>

#include "browser/builtin/Inbox.h"
#include "browser/builtin/Transfer.h"

namespace platform {

// Connections are kept and cookies shared among all fetches of its life. Made, used and destroyed
// on the owner's thread; what comes of a fetch goes to the inbox.
class NetworkThread {
public:
    explicit NetworkThread(std::shared_ptr<Inbox> inbox);
    // Ends all fetches and waits for the thread.
    ~NetworkThread();
    NetworkThread(const NetworkThread&) = delete;
    NetworkThread& operator=(const NetworkThread&) = delete;

    void Start(FetchRequest request);
    // Nothing more is heard of the fetch or timer but what is in the inbox already.
    void Cancel(FetchId id);
    void StartTimer(FetchId id, std::chrono::seconds delay);

private:
    using Time = std::chrono::steady_clock::time_point;
    struct CancelCommand {
        FetchId id;
    };
    struct TimerCommand {
        FetchId id;
        Time due;
    };
    struct EndCommand {};
    using Command = std::variant<FetchRequest, CancelCommand, TimerCommand, EndCommand>;

    class RunningOnes;

    void End();
    void Send(Command command);
    void Run();
    bool HandleCommands();
    bool Handle(FetchRequest& request);
    bool Handle(const CancelCommand& command);
    bool Handle(const TimerCommand& command);
    bool Handle(const EndCommand& command);
    void FetchAtOnce(const FetchRequest& request);
    void CollectFinished();
    void ServeTimers();
    void Finish(Transfer& transfer, CURLcode code);
    void Retire(FetchId id);
    int WaitMilliseconds() const;

    const std::shared_ptr<Inbox> m_inbox;
    std::mutex m_mutex;
    std::vector<Command> m_commands;

    // Declared in this order: easy handles go first, then the share, then the multi handle.
    CurlMulti m_multi;
    CurlShare m_share;
    TransferSettings m_settings;
    std::vector<CurlEasy> m_idleHandles;
    std::map<FetchId, std::unique_ptr<Transfer>> m_transfers;
    std::map<FetchId, Time> m_timers;
    std::vector<NetworkEvent> m_events;
    std::thread m_thread;
};

} // namespace platform
