// Bounds on what a caller, or a server, hands to any engine.
#pragma once

#include <cstddef>
#include <string>

namespace platform {

// Longer than any real URL; servers refuse far shorter ones, and every copy costs.
constexpr std::size_t kMaxUrlLength = 64 * 1024;
// The page as kept in memory, after decompression: a few KB can unpack to gigabytes.
constexpr std::size_t kMaxPageBytes = std::size_t{256} * 1024 * 1024;
// The page with its frames and all else that it loads before it is complete.
constexpr std::size_t kMaxLoadedBytes = std::size_t{512} * 1024 * 1024;

inline std::string PageTooLargeText() {
    return "the page is larger than " + std::to_string(kMaxPageBytes) + " bytes";
}

inline std::string LoadedTooMuchText() {
    return "the page loads more than " + std::to_string(kMaxLoadedBytes) + " bytes";
}

} // namespace platform
