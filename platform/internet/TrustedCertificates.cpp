#include "internet/TrustedCertificates.h"

namespace platform {

void TrustCertificates(CURL* easy, const FurtherCertificates& further) {
    if (further.certificates.empty()) return;
    std::string all;
    for (const std::string& one : further.certificates)
        all += one;
    const curl_blob blob{all.data(), all.size(), CURL_BLOB_COPY};
    // The system's directory keeps its certificates trusted beside these.
    const curl_version_info_data* info = curl_version_info(CURLVERSION_NOW);
    const char* const pszSystem = info->capath ? info->capath : "/etc/ssl/certs";
    curl_easy_setopt(easy, CURLOPT_CAINFO_BLOB, &blob);
    curl_easy_setopt(easy, CURLOPT_CAPATH, pszSystem);
    curl_easy_setopt(easy, CURLOPT_PROXY_CAINFO_BLOB, &blob);
    curl_easy_setopt(easy, CURLOPT_PROXY_CAPATH, pszSystem);
}

} // namespace platform
