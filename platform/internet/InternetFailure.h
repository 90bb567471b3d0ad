// Why a request failed.
#pragma once

#include <string>

#include <curl/curl.h>

#include <platform/String.h>

namespace platform {

struct InternetFailure {
    DWORD error = 0;
    std::string text; // in plain words, without user information or a query
};

// What the transfer library's result means. hasHead: the reply's head has arrived. `url` and
// `detail` as FailureText takes them.
InternetFailure FailureOf(CURL* easy, CURLcode code, bool hasHead, const std::string& url,
                          const std::string& detail);

} // namespace platform
