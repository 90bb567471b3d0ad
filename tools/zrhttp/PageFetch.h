// One page through the library's getter.
#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "zrhttp/CollectedPages.h"
#include "zrhttp/FetchOptions.h"
#include "zrhttp/FetchRequest.h"

namespace zrhttp {

struct FetchResult {
    std::uint32_t code = 0;
    std::string error;             // the getter's text; UTF-8
    std::string status;            // why the browser failed, in its words; UTF-8
    std::string url;               // where the page came from; UTF-8
    std::optional<int> httpStatus; // of the last reply
    std::string page; // bytes; empty when the page failed; with --save lines that end in CR LF
    std::uint64_t length = 0;
    std::int64_t longestIdle = 0; // seconds
    std::chrono::milliseconds elapsed{0};
    std::vector<CollectedPage> pages;
};

// Loads the page and waits for it, showing its progress. An interrupt ends it with code 28.
FetchResult FetchPage(const FetchOptions& options, const FetchRequest& request);

} // namespace zrhttp
