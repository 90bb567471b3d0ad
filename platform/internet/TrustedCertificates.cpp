#include "internet/TrustedCertificates.h"

namespace platform {

void TrustCertificates(CURL* easy, const std::string& certificateFile) {
    if (certificateFile.empty()) return;
    // The system's directory keeps its certificates trusted beside those of the file.
    const curl_version_info_data* info = curl_version_info(CURLVERSION_NOW);
    curl_easy_setopt(easy, CURLOPT_CAINFO, certificateFile.c_str());
    curl_easy_setopt(easy, CURLOPT_CAPATH, info->capath ? info->capath : "/etc/ssl/certs");
}

} // namespace platform
