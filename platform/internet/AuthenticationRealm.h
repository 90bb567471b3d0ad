// What a challenge (RFC 9110, 11.6.1) calls the area that it protects.
#pragma once

#include <string>
#include <string_view>

namespace platform {

// The first realm that the challenges of a reply name, without control characters and cut to what
// a question can show; empty without one.
std::string RealmOf(std::string_view challenges);

} // namespace platform
