// What the builtin engine calls itself in its requests (RFC 9110, User-Agent).
#pragma once

namespace platform {

inline constexpr const char* kBuiltinUserAgent = "Mozilla/5.0 (compatible; ZrHttpBase3 builtin)";

} // namespace platform
