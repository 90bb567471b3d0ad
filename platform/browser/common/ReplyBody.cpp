#include "browser/common/ReplyBody.h"

#include <utility>

namespace platform {

ReplyBody::~ReplyBody() {
    if (m_budget) m_budget->GiveBack(m_bytes.size());
}

bool ReplyBody::Append(std::string_view bytes) {
    const std::lock_guard lock(m_mutex);
    const bool isAllowed = !m_budget || m_budget->Take(bytes.size());
    if (isAllowed)
        m_bytes.append(bytes);
    else
        m_budget->GiveBack(std::exchange(m_bytes, {}).size());
    return isAllowed;
}

void ReplyBody::Replace(std::string bytes) {
    const std::lock_guard lock(m_mutex);
    m_bytes = std::move(bytes);
}

std::size_t ReplyBody::Size() const {
    const std::lock_guard lock(m_mutex);
    return m_bytes.size();
}

std::size_t ReplyBody::Copy(std::size_t offset, char* target, std::size_t count) const {
    const std::lock_guard lock(m_mutex);
    if (offset >= m_bytes.size()) return 0;
    return m_bytes.copy(target, count, offset);
}

} // namespace platform
