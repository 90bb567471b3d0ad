// What the network thread leaves for a browser object.
#pragma once

#include <deque>
#include <memory>
#include <mutex>
#include <vector>

#include "browser/builtin/NetworkMessages.h"
#include "browser/common/OwnerLink.h"

namespace platform {

// The network thread holds this and never the browser, which may go at any time.
class Inbox : public std::enable_shared_from_this<Inbox> {
public:
    explicit Inbox(std::shared_ptr<OwnerLink> owner) : m_owner(std::move(owner)) {}

    // Network thread. Empties `events`. One message to the owner announces all that has gathered
    // until it is handled.
    void Put(std::vector<NetworkEvent>& events);

private:
    void Deliver(class BuiltinBrowser& browser);

    const std::shared_ptr<OwnerLink> m_owner;
    std::mutex m_mutex;
    std::deque<NetworkEvent> m_events;
    bool m_isAnnounced = false;
};

} // namespace platform
