// What was wrong with a server's certificate.
#pragma once

namespace platform {

// The numbers of X509_V_ERR_..., as CURLINFO_SSL_VERIFYRESULT reports them.
enum class CertificateCheck : long {
    notFinished = 1, // stays so when the host name is what does not fit
    notYetValid = 9,
    expired = 10,
    selfSigned = 18,
    selfSignedInChain = 19,
    unknownIssuer = 20,
    unknownFirst = 21,
    revoked = 23,
    hostMismatch = 62
};

} // namespace platform
