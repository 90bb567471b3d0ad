// The thread that reads and writes a browser's DevTools pipe.
#pragma once

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "browser/chromium/FrameReader.h"
#include "browser/chromium/PipeFilter.h"
#include "system/OwnedDescriptor.h"

namespace platform {

// What has come from the browser: a message, the answer that a call will not get, or the end.
struct PipeMessage {
    enum class Kind { message, timeout, end };
    Kind kind = Kind::message;
    nlohmann::json value; // kind message: an object
    int call = 0;         // kind timeout
    std::size_t bytes = 0;
};

// The thread holds the object and ends after Close or with the browser; nobody waits for it.
class DevToolsPipe : public std::enable_shared_from_this<DevToolsPipe> {
public:
    using Time = std::chrono::steady_clock::time_point;

    DevToolsPipe(OwnedDescriptor toBrowser, OwnedDescriptor fromBrowser,
                 OwnedDescriptor errorOutput);

    // `announce` runs on the thread: something waits for Take, and nothing did before. The filter
    // (may be null) sees each message first; it may write. `cleanUp` (may be empty) is the last
    // thing that the thread does.
    void Start(std::shared_ptr<PipeFilter> filter, std::function<void()> announce,
               std::function<void()> cleanUp);
    // Any thread, from here on. With a deadline the call's answer comes by then, one way or the
    // other.
    void Write(std::string message, int call, std::optional<Time> deadline);
    std::optional<PipeMessage> Take();
    bool Wait(std::chrono::milliseconds patience);
    void Close();
    bool IsOpen() const { return m_isOpen; }
    std::string ErrorOutput() const;

private:
    void Run();
    bool Turn();
    int PollTimeout();
    void ServeFilter();
    bool ReadMessages();
    void ReadErrorOutput();
    void ReadLastWords();
    bool WriteMessages();
    void ReportTimeouts();
    bool TakeMessage(std::string_view text);
    void Put(PipeMessage message);
    void PutTimeout(int call);
    void End();
    void Wake() const;
    bool IsThrottled() const;

    OwnedDescriptor m_toBrowser;   // thread only
    OwnedDescriptor m_fromBrowser; // thread only
    OwnedDescriptor m_errorOutput; // thread only
    const OwnedDescriptor m_wake;
    FrameReader m_reader;
    std::vector<char> m_chunk; // thread only: what is read at a time
    std::shared_ptr<PipeFilter> m_filter;
    std::function<void()> m_announce;
    std::atomic<bool> m_isOpen{true};

    mutable std::mutex m_mutex;
    std::condition_variable m_arrived;
    std::deque<PipeMessage> m_messages;
    std::size_t m_messageBytes = 0;
    int m_waiters = 0;
    bool m_hasEnded = false; // the message of the end has been put
    bool m_isAnnounced = false;
    std::deque<std::string> m_outgoing;
    std::size_t m_written = 0; // of the first outgoing message
    std::map<int, Time> m_deadlines;
    std::optional<Time> m_closeBy; // closing, once all is written or at that time
    std::string m_errorText;
};

} // namespace platform
