#include "browser/common/ReplyBody.h"

#include <algorithm>

namespace platform {

void ReplyBody::Append(std::string_view bytes) {
    const std::lock_guard lock(m_mutex);
    m_bytes.append(bytes);
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
