// The calling thread's apartment: where objects that live on this thread are left work by their
// helpers on other threads.
#pragma once

#include <functional>
#include <memory>

#include "Export.h"
#include "Types.h"

ZRHB_EXPORT_BEGIN

namespace platform {

class Apartment {
public:
    virtual ~Apartment() = default;

    // The apartment of the calling thread; made on first use, with a message-only window of its
    // own. Work posted after the thread has ended is dropped unrun.
    static std::shared_ptr<Apartment> OfThisThread();

    // Any thread. The work runs on the apartment's thread, in the dispatch of a message, one piece
    // a message, in the order of posting; it counts as news (WaitForApartmentNews). Work must not
    // throw.
    virtual void Post(std::function<void()> work) = 0;
};

} // namespace platform

ZRHB_EXPORT_END
