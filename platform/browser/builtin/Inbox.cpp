#include "browser/builtin/Inbox.h"

#include <iterator>

#include "browser/builtin/BuiltinBrowser.h"

namespace platform {

void Inbox::Put(std::vector<NetworkEvent>& events) {
    if (events.empty()) return;
    {
        const std::lock_guard lock(m_mutex);
        std::move(events.begin(), events.end(), std::back_inserter(m_events));
        events.clear();
        if (m_isAnnounced) return;
        m_isAnnounced = true;
    }
    m_owner->Post([self = shared_from_this()](BrowserObject& browser) {
        self->Deliver(static_cast<BuiltinBrowser&>(browser));
    });
}

void Inbox::Deliver(BuiltinBrowser& browser) {
    std::unique_lock lock(m_mutex);
    // From here on news needs a message of its own: a sink may serve messages during an event.
    // Events are taken one by one for the same reason, so that they stay in order.
    m_isAnnounced = false;
    while (!m_events.empty()) {
        NetworkEvent event = std::move(m_events.front());
        m_events.pop_front();
        lock.unlock();
        browser.OnNetworkEvent(event);
        lock.lock();
    }
}

} // namespace platform
