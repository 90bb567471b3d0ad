// What was wrong with the certificate of a server or a proxy.
#pragma once

#include <curl/curl.h>

namespace platform {

// The numbers of X509_V_ERR_..., as CURLINFO_SSL_VERIFYRESULT reports them.
enum class CertificateCheck : long {
    notFinished = 1,  // stays so when the host name is what does not fit
    badSignature = 7, // by an authority of that name, but with another key
    notYetValid = 9,
    expired = 10,
    selfSigned = 18,
    selfSignedInChain = 19,
    unknownIssuer = 20,
    unknownFirst = 21,
    revoked = 23,
    hostMismatch = 62
};

struct CertificateFailure {
    CertificateCheck check{};
    bool isProxys = false;
};

// Of a transfer that has ended with CURLE_PEER_FAILED_VERIFICATION.
inline CertificateFailure CertificateFailureOf(CURL* easy) {
    long server = 0;
    long proxy = 0;
    curl_easy_getinfo(easy, CURLINFO_SSL_VERIFYRESULT, &server);
    curl_easy_getinfo(easy, CURLINFO_PROXY_SSL_VERIFYRESULT, &proxy);
    return {CertificateCheck{proxy != 0 ? proxy : server}, proxy != 0};
}

} // namespace platform
