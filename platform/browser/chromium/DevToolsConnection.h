// The conversation with one browser over its DevTools pipe: commands, replies by id, events.
#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <string>

#include <nlohmann/json.hpp>

#include "system/OwnedDescriptor.h"

namespace platform {

class PostGuard;

struct DevToolsReply {
    nlohmann::json result; // an object; empty when the call failed
    std::string error;     // what the browser answered, or kCallTimedOut, or kBrowserGone
    bool IsOk() const { return error.empty(); }
};

struct DevToolsEvent {
    std::string session; // empty: of the browser itself
    std::string method;
    nlohmann::json params;
};

inline constexpr const char* kCallTimedOut = "the browser does not answer";
inline constexpr const char* kBrowserGone = "the browser has gone away";

// A thread of its own reads and writes the pipe; handlers run on the owner's thread only, the one
// that made the connection: in the dispatch of a message posted to its apartment, or in Dispatch().
// Handlers may move out of what they are given, and may send, dispatch and close.
class DevToolsConnection : public std::enable_shared_from_this<DevToolsConnection> {
public:
    using ReplyHandler = std::function<void(DevToolsReply&)>;
    using EventHandler = std::function<void(DevToolsEvent&)>;
    static constexpr std::chrono::milliseconds kNoTimeout{0};

    // Takes over the pipe's ends. `errorOutput` is what the browser's standard error comes out of;
    // its last lines are kept. `cleanUp` is the last thing that the pipe's thread does, whichever
    // side has ended the conversation.
    static std::shared_ptr<DevToolsConnection> Start(OwnedDescriptor toBrowser,
                                                     OwnedDescriptor fromBrowser,
                                                     OwnedDescriptor errorOutput,
                                                     std::function<void()> cleanUp = {});
    virtual ~DevToolsConnection() = default;

    // Owner's thread, from here on.

    // Events go there, until another handler is set; without one they are dropped.
    virtual void SetEventHandler(EventHandler handler) = 0;
    // Once, when the browser has gone away or broken the protocol: after the handlers of all
    // calls that waited have run with kBrowserGone. Not after Close.
    virtual void SetEndHandler(std::function<void()> handler) = 0;
    // Sends a command and returns. Every handler runs exactly once, also on failure, unless the
    // connection is closed first. Never blocks; after the end the handler gets kBrowserGone.
    virtual void Send(const std::string& session, const char* pszMethod, nlohmann::json params,
                      ReplyHandler onReply = {},
                      std::chrono::milliseconds timeout = kNoTimeout) = 0;
    // Runs the handlers of what has arrived. Nothing is lost, nothing runs out of order when a
    // handler calls it again.
    virtual void Dispatch() = 0;
    // Waits, serving no messages, until something has arrived that Dispatch would handle. False
    // when the time is over first. For the start, when nobody else can be waited for.
    virtual bool WaitForMessages(std::chrono::milliseconds patience) = 0;
    // Ends the conversation: handlers are dropped, the pipe's ends are closed once what was sent
    // has been written (or cannot be), after which the browser quits.
    virtual void Close() = 0;

    // Any thread.

    // What watches over the browser's requests.
    virtual PostGuard& Posts() = 0;
    // False from the moment on when the browser's end of the pipe is closed, or broken off.
    virtual bool IsOpen() const = 0;
    // The last lines that the browser has written to its standard error, at most 4 KiB.
    virtual std::string ErrorOutput() const = 0;
};

} // namespace platform
