// What `zrhttp fetch` tells of its result.
#pragma once

#include "zrhttp/FetchOptions.h"
#include "zrhttp/PageFetch.h"

namespace zrhttp {

// Writes page or pages (or the JSON object) to their places and failures to standard error.
// Returns the exit status.
int ReportFetch(const FetchOptions& options, const FetchResult& result);

} // namespace zrhttp
