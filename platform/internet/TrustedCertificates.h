// Whom a transfer trusts to vouch for a server.
#pragma once

#include <curl/curl.h>

#include "internet/FurtherCertificates.h"

namespace platform {

// `further` is trusted beside the system's, by servers and by proxies that speak TLS.
void TrustCertificates(CURL* easy, const FurtherCertificates& further);

} // namespace platform
