// The checked request of a fetch, in the library's character set.
#pragma once

#include <optional>
#include <string>
#include <string_view>

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

// What the prefixes before a URL ask for.
struct Traffic {
    bool isSimulated; // SIM:
    bool isRecorded;  // SAVE:, also behind SIM:
};
Traffic TrafficOf(std::string_view url);

// Reads the body and checks every argument. Throws UsageError.
FetchRequest MakeFetchRequest(const FetchOptions& options);

} // namespace zrhttp
