// Bounds on what a caller hands to any engine.
#pragma once

#include <cstddef>

namespace platform {

// Longer than any real URL; servers refuse far shorter ones, and every copy costs.
constexpr std::size_t kMaxUrlLength = 64 * 1024;

} // namespace platform
