// Whom a transfer trusts to vouch for a server.
#pragma once

#include <string>

#include <curl/curl.h>

namespace platform {

// certificateFile: certificates (PEM) that are trusted beside the system's, or empty.
void TrustCertificates(CURL* easy, const std::string& certificateFile);

} // namespace platform
