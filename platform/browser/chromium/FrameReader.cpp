#include "browser/chromium/FrameReader.h"

#include <utility>

namespace platform {

bool FrameReader::Feed(std::string_view bytes,
                       const std::function<void(std::string_view)>& onMessage) {
    for (std::size_t end; (end = bytes.find('\0')) != std::string_view::npos;) {
        if (m_begun.size() + end > m_maxMessageBytes) return false;
        if (m_begun.empty()) {
            onMessage(bytes.substr(0, end));
        } else {
            const std::string message = std::exchange(m_begun, {}).append(bytes.substr(0, end));
            onMessage(message);
        }
        bytes.remove_prefix(end + 1);
    }
    if (m_begun.size() + bytes.size() > m_maxMessageBytes) return false;
    m_begun.append(bytes);
    return true;
}

} // namespace platform
