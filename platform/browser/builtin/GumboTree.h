// A gumbo parse that can neither overflow the stack nor run away.
#pragma once

#include <functional>
#include <string_view>

#include <gumbo.h>

namespace platform {

// Parses UTF-8 text and calls visit(root) with the tree, which ends with the call. False, without
// a visit, when the tree would cost more than kMaxTreeTime or kMaxTreeBytes.
bool VisitGumboTree(std::string_view utf8, const std::function<void(const GumboNode&)>& visit);

} // namespace platform
