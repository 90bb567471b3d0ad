// What `zrhttp fetch` tells of its result.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "zrhttp/FetchOptions.h"
#include "zrhttp/PageFetch.h"

namespace zrhttp {

// Replaces the file of --save (a drive path maps to a file) by the page's text, or tells, without
// one, whether it can be written. Throws ToolError with the getter's code for a page that cannot
// be saved.
void WriteSaveFile(const std::string& path, std::optional<std::string_view> text);

// Writes page or pages (or the JSON object) to their places and failures to standard error.
// Returns the exit status.
int ReportFetch(const FetchOptions& options, const FetchResult& result);

} // namespace zrhttp
