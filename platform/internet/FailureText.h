// Why a transfer failed, in plain words.
#pragma once

#include <string>

#include <curl/curl.h>

namespace platform {

// What the library's text for a failure says beyond its code.
bool IsChunkFailure(const std::string& detail);

// `url` is the URL of the failed request; `detail` is what the library wrote into the transfer's
// error buffer. The text holds neither user information nor a query.
std::string FailureText(CURL* easy, CURLcode code, const std::string& url,
                        const std::string& detail);

} // namespace platform
