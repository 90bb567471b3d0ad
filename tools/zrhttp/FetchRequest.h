// The checked request of a fetch, in the library's character set.
#pragma once

#include <optional>
#include <string>

#include <platform/String.h>

#include "zrhttp/FetchOptions.h"

namespace zrhttp {

struct FetchRequest {
    CString url;
    std::optional<std::string> body; // exact bytes, never empty; none for a GET request
    CString headers;                 // lines joined by CR LF; sent with a body only
    CString contentType;
    CStringArray titles;
};

// Reads the body and checks every argument. Throws UsageError.
FetchRequest MakeFetchRequest(const FetchOptions& options);

} // namespace zrhttp
