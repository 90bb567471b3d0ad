// What the owner's thread and the network thread tell each other.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "browser/builtin/HtmlScan.h"
#include "browser/common/HeaderBlock.h"
#include "browser/common/PageType.h"
#include "browser/common/ReplyBody.h"

namespace platform {

using FetchId = std::uint64_t;

// A user name and password that go to one origin only.
struct Credentials {
    std::string origin;
    std::string user;
    std::string password;
};

struct FetchRequest {
    FetchId id = 0;
    std::string url;
    Credentials credentials;
    std::string postData; // empty: GET
    std::vector<HeaderField> headers;
    std::shared_ptr<ReplyBody> body; // filled as the page arrives
};

// The head of the page's reply, redirects followed.
struct HeadReceived {
    std::string url;
    ReplyType reply;
};
struct FirstBytesReceived {};
// The page is complete; `problem` says why its frames could not be looked for.
struct PageReceived {
    HtmlScan scan;
    std::string problem;
};
struct FetchFailed {
    std::string url; // the last one tried
    std::string reason;
};
struct TimerElapsed {};

struct NetworkEvent {
    FetchId id = 0;
    std::variant<HeadReceived, FirstBytesReceived, PageReceived, FetchFailed, TimerElapsed> what;
};

} // namespace platform
