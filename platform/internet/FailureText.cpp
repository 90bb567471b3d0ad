#include "internet/FailureText.h"

#include <cerrno>

#include "internet/CertificateCheck.h"
#include "internet/CurlUrl.h"
#include "internet/ReplyFraming.h"
#include "internet/TransferLimits.h"

namespace platform {
namespace {

constexpr const char* kNoReply = "the server closed the connection without a reply";

std::string CertificateText(CertificateCheck check) {
    switch (check) {
    case CertificateCheck::expired:
        return "certificate has expired";
    case CertificateCheck::notYetValid:
        return "certificate is not yet valid";
    case CertificateCheck::selfSigned:
        return "self-signed certificate";
    case CertificateCheck::selfSignedInChain:
        return "certificate of an unknown authority (self-signed certificate in the chain)";
    case CertificateCheck::badSignature:
    case CertificateCheck::unknownIssuer:
    case CertificateCheck::unknownFirst:
        return "certificate of an unknown authority";
    case CertificateCheck::revoked:
        return "certificate has been revoked";
    case CertificateCheck::notFinished:
    case CertificateCheck::hostMismatch:
        return "certificate is for another host";
    }
    return "certificate is not trusted (check " + std::to_string(static_cast<long>(check)) + ")";
}

std::string PeersCertificateText(CURL* easy) {
    const CertificateFailure failure = CertificateFailureOf(easy);
    return (failure.isProxys ? "the proxy's " : "") + CertificateText(failure.check);
}

std::string ConnectText(CURL* easy) {
    long error = 0;
    curl_easy_getinfo(easy, CURLINFO_OS_ERRNO, &error);
    switch (error) {
    case ECONNREFUSED:
        return "connection refused";
    case ENETUNREACH:
        return "network is unreachable";
    case EHOSTUNREACH:
        return "host is unreachable";
    default:
        return "cannot connect to the server";
    }
}

bool IsIn(const std::string& text, const char* pszPart) {
    return text.find(pszPart) != std::string::npos;
}

std::string BrokenOffText(CURL* easy, const std::string& detail) {
    const bool isTlsCut = IsIn(detail, "unexpected eof");
    long headBytes = 0;
    curl_easy_getinfo(easy, CURLINFO_HEADER_SIZE, &headBytes);
    if (headBytes == 0)
        return isTlsCut ? kNoReply : "the connection broke off before there was a reply";
    curl_off_t received = 0;
    curl_off_t announced = -1;
    curl_easy_getinfo(easy, CURLINFO_SIZE_DOWNLOAD_T, &received);
    curl_easy_getinfo(easy, CURLINFO_CONTENT_LENGTH_DOWNLOAD_T, &announced);
    const std::string count = std::to_string(received);
    if (IsChunkFailure(detail)) return "the reply's chunks are malformed";
    if (announced >= 0)
        return "incomplete: " + count + " of " + std::to_string(announced) + " bytes";
    return std::string("incomplete: the ") + (isTlsCut ? "secure " : "") +
           "connection broke off after " + count + " bytes";
}

std::string HostOf(const std::string& url) {
    const auto parsed = CurlUrl::Parse(url);
    return parsed ? parsed->Host() : std::string();
}

} // namespace

bool IsChunkFailure(const std::string& detail) {
    return IsIn(detail, "chunked-encoding");
}

std::string FailureText(CURL* easy, CURLcode code, const std::string& url,
                        const std::string& detail) {
    switch (code) {
    case CURLE_COULDNT_RESOLVE_HOST:
        return "host name not found: " + HostOf(url);
    case CURLE_COULDNT_RESOLVE_PROXY:
        return "host name of the proxy not found";
    case CURLE_COULDNT_CONNECT:
        return ConnectText(easy);
    case CURLE_OPERATION_TIMEDOUT:
        return "no connection within " + std::to_string(kConnectTimeout.count()) + " seconds";
    case CURLE_PEER_FAILED_VERIFICATION:
        return PeersCertificateText(easy);
    case CURLE_SSL_CACERT_BADFILE:
        return "the file of trusted certificates cannot be read";
    case CURLE_SSL_CONNECT_ERROR:
        return "no secure connection: " + detail;
    case CURLE_GOT_NOTHING:
        return kNoReply;
    case CURLE_PARTIAL_FILE:
    case CURLE_RECV_ERROR:
    case CURLE_SEND_ERROR:
    case CURLE_HTTP2:
    case CURLE_HTTP2_STREAM:
        return BrokenOffText(easy, detail);
    case CURLE_UNSUPPORTED_PROTOCOL:
    case CURLE_WEIRD_SERVER_REPLY:
        if (IsIn(detail, "Content-Length")) return kMalformedLength;
        return "the reply is not HTTP";
    case CURLE_BAD_CONTENT_ENCODING:
        return "the reply's compression is broken";
    case CURLE_URL_MALFORMAT:
        return "the URL is malformed";
    default:
        return curl_easy_strerror(code);
    }
}

} // namespace platform
