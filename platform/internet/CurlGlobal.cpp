#include "internet/CurlGlobal.h"

#include <mutex>

#include <curl/curl.h>

namespace platform {

void EnsureCurlIsReady() {
    static std::once_flag once;
    std::call_once(once, [] { curl_global_init(CURL_GLOBAL_DEFAULT); });
}

} // namespace platform
