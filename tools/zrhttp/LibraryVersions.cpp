#include "zrhttp/LibraryVersions.h"

#include <curl/curl.h>
#include <sqlite3.h>

namespace zrhttp {

std::vector<LibraryVersion> LibraryVersions() {
    const curl_version_info_data* curl = curl_version_info(CURLVERSION_NOW);
    return {{"libcurl", curl->version},
            {"TLS", curl->ssl_version ? curl->ssl_version : "none"},
            {"gumbo", GUMBO_VERSION}, // tells no version at run time: the one built with
            {"SQLite", sqlite3_libversion()}};
}

} // namespace zrhttp
