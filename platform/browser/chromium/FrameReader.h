// Messages out of the browser's stream of bytes: each ends with a NUL.
#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>

namespace platform {

class FrameReader {
public:
    explicit FrameReader(std::size_t maxMessageBytes) : m_maxMessageBytes(maxMessageBytes) {}

    // Hands on each message that `bytes` completes, without its NUL; the view lasts for the call.
    // False when a message is longer than allowed: nothing more can be read then.
    bool Feed(std::string_view bytes, const std::function<void(std::string_view)>& onMessage);

private:
    const std::size_t m_maxMessageBytes;
    std::string m_begun; // of a message whose end has not come
};

} // namespace platform
