#include "internet/InternetFailure.h"

#include <platform/Internet.h>

#include "internet/CertificateCheck.h"
#include "internet/FailureText.h"

namespace platform {
namespace {

DWORD CertificateError(CURL* easy) {
    switch (CertificateFailureOf(easy).check) {
    case CertificateCheck::expired:
    case CertificateCheck::notYetValid:
        return ERROR_INTERNET_SEC_CERT_DATE_INVALID;
    case CertificateCheck::notFinished:
    case CertificateCheck::hostMismatch:
        return ERROR_INTERNET_SEC_CERT_CN_INVALID;
    default:
        return ERROR_INTERNET_INVALID_CA;
    }
}

DWORD ErrorOf(CURL* easy, CURLcode code, const std::string& detail) {
    if (IsChunkFailure(detail)) return ERROR_HTTP_INVALID_SERVER_RESPONSE;
    switch (code) {
    case CURLE_COULDNT_RESOLVE_HOST:
    case CURLE_COULDNT_RESOLVE_PROXY:
        return ERROR_INTERNET_NAME_NOT_RESOLVED;
    case CURLE_COULDNT_CONNECT:
    case CURLE_SSL_CONNECT_ERROR:
    case CURLE_PROXY:
        return ERROR_INTERNET_CANNOT_CONNECT;
    case CURLE_OPERATION_TIMEDOUT:
        return ERROR_INTERNET_TIMEOUT;
    case CURLE_PEER_FAILED_VERIFICATION:
        return CertificateError(easy);
    case CURLE_SSL_CACERT_BADFILE:
        return ERROR_INTERNET_INVALID_CA;
    case CURLE_UNSUPPORTED_PROTOCOL:
    case CURLE_WEIRD_SERVER_REPLY:
        return ERROR_HTTP_INVALID_SERVER_RESPONSE;
    case CURLE_URL_MALFORMAT:
        return ERROR_INTERNET_INVALID_URL;
    default:
        return ERROR_INTERNET_CONNECTION_ABORTED;
    }
}

} // namespace

InternetFailure FailureOf(CURL* easy, CURLcode code, bool hasHead, const std::string& url,
                          const std::string& detail) {
    // The library has a bound for a header line, and this is how it says so.
    if (!hasHead && code == CURLE_OUT_OF_MEMORY)
        return {ERROR_HTTP_INVALID_SERVER_RESPONSE, "a line of the reply's head is too long"};
    long connectStatus = 0;
    curl_easy_getinfo(easy, CURLINFO_HTTP_CONNECTCODE, &connectStatus);
    if (!hasHead && connectStatus >= 300)
        return {ERROR_INTERNET_CANNOT_CONNECT,
                "the proxy refuses the connection (status " + std::to_string(connectStatus) + ")"};
    return {ErrorOf(easy, code, detail), FailureText(easy, code, url, detail)};
}

} // namespace platform
