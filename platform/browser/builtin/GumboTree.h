// A gumbo parse that can neither overflow the stack nor run away.
#pragma once

#include <chrono>
#include <cstddef>
#include <functional>
#include <string_view>

#include <gumbo.h>

#include "browser/builtin/Limits.h"

namespace platform {

struct TreeLimits {
    std::chrono::milliseconds time = kMaxTreeTime; // of this thread's processor time
    std::size_t bytes = kMaxTreeBytes;
};

// Parses UTF-8 text and calls visit(root) with the tree, which ends with the call. False, without
// a visit, when the tree would cost more than the limits.
bool VisitGumboTree(std::string_view utf8, const std::function<void(const GumboNode&)>& visit,
                    const TreeLimits& limits = {});

} // namespace platform
