#include "internet/InternetHandles.h"

#include <platform/LastError.h>

namespace platform {

HINTERNET InternetHandles::Add(Object object) {
    const std::lock_guard lock(m_mutex);
    // A number, not an address: nobody follows it.
    const auto handle = reinterpret_cast<HINTERNET>(m_nextNumber);
    m_nextNumber += 4;
    m_objects.emplace(handle, std::move(object));
    return handle;
}

InternetHandles::Object InternetHandles::Remove(HINTERNET handle) {
    const std::lock_guard lock(m_mutex);
    auto node = m_objects.extract(handle);
    return node ? std::move(node.mapped()) : Object();
}

template <class TObject>
std::shared_ptr<TObject> InternetHandles::Find(HINTERNET handle) {
    const std::lock_guard lock(m_mutex);
    const auto found = m_objects.find(handle);
    if (found == m_objects.end()) {
        SetLastError(ERROR_INVALID_HANDLE);
        return nullptr;
    }
    const auto* object = std::get_if<std::shared_ptr<TObject>>(&found->second);
    if (!object) SetLastError(ERROR_INTERNET_INCORRECT_HANDLE_TYPE);
    return object ? *object : nullptr;
}

template std::shared_ptr<InternetSession> InternetHandles::Find(HINTERNET);
template std::shared_ptr<InternetRequest> InternetHandles::Find(HINTERNET);

} // namespace platform
