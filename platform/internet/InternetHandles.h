// The handles that callers hold.
#pragma once

#include <cstdint>
#include <memory>
#include <mutex>
#include <unordered_map>
#include <variant>

#include <platform/Internet.h>

#include "internet/InternetRequest.h"
#include "internet/InternetSession.h"

namespace platform {

// Any thread. No number is used twice, so a handle that was closed, or never was one, is none.
class InternetHandles {
public:
    using Object = std::variant<std::monostate, std::shared_ptr<InternetSession>,
                                std::shared_ptr<InternetRequest>>;

    HINTERNET Add(Object object);
    // Nothing when there is no such handle.
    Object Remove(HINTERNET handle);
    // Null, with the calling thread's last error set, when the handle is none of such an object.
    template <class TObject>
    std::shared_ptr<TObject> Find(HINTERNET handle);

private:
    std::mutex m_mutex;
    std::unordered_map<HINTERNET, Object> m_objects;
    std::uintptr_t m_nextNumber = 0xCC0004;
};

extern template std::shared_ptr<InternetSession> InternetHandles::Find(HINTERNET);
extern template std::shared_ptr<InternetRequest> InternetHandles::Find(HINTERNET);

} // namespace platform
