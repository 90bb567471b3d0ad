// How secure connections are set up, where the transfer library's options do not reach.
#pragma once

#include <curl/curl.h>

namespace platform {

// For each secure connection that the handle makes, to a proxy, too. To be called for every handle.
void SetUpTls(CURL* easy);

} // namespace platform
