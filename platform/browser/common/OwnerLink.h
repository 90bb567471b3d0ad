// How helpers on other threads, and posted work, reach a browser object that may be gone by then.
#pragma once

#include <functional>
#include <memory>

#include <platform/Apartment.h>

namespace platform {

class BrowserObject;

class OwnerLink : public std::enable_shared_from_this<OwnerLink> {
public:
    // On the owner's thread.
    explicit OwnerLink(BrowserObject& object)
        : m_apartment(Apartment::OfThisThread()), m_object(&object) {}

    // Any thread. The work runs in a dispatch of the owner's thread, with a reference held on the
    // object, unless the object is gone by then.
    void Post(std::function<void(BrowserObject&)> work);

    // On the owner's thread, when the object goes.
    void Detach() { m_object = nullptr; }

private:
    const std::shared_ptr<Apartment> m_apartment;
    BrowserObject* m_object; // owner's thread only
};

} // namespace platform
