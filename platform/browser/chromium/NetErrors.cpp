#include "browser/chromium/NetErrors.h"

#include <algorithm>
#include <array>
#include <string_view>

#include "browser/common/PageUrl.h"
#include "internet/CurlUrl.h"

namespace platform {
namespace {

struct Entry {
    std::string_view error;
    const char* text;
};

constexpr std::array<Entry, 37> kTexts{{
    {"ABORTED", "the loading was stopped"},
    {"ACCESS_DENIED", kConnectionsStay},
    {"ADDRESS_INVALID", "cannot connect to the server"},
    {"ADDRESS_UNREACHABLE", "host is unreachable"},
    {"BLOCKED_BY_CLIENT", kMaySendTwice},
    {"BLOCKED_BY_CSP", "the page does not allow this frame"},
    {"BLOCKED_BY_RESPONSE", "the server does not allow its page to be shown in this frame"},
    {"CERT_AUTHORITY_INVALID", "certificate of an unknown authority"},
    {"CERT_COMMON_NAME_INVALID", "certificate is for another host"},
    {"CERT_DATE_INVALID", "certificate has expired or is not yet valid"},
    {"CERT_INVALID", "certificate is not valid"},
    {"CERT_REVOKED", "certificate has been revoked"},
    {"CERT_WEAK_KEY", "certificate has a weak key"},
    {"CONNECTION_CLOSED", kBrokenOff},
    {"CONNECTION_REFUSED", "connection refused"},
    {"CONNECTION_RESET", kBrokenOff},
    {"CONNECTION_TIMED_OUT", "cannot connect to the server in time"},
    {"CONTENT_DECODING_FAILED", "the reply's compression is broken"},
    {"CONTENT_LENGTH_MISMATCH", kBrokenOff},
    {"EMPTY_RESPONSE", "the server closed the connection without a reply"},
    {"FILE_NOT_FOUND", "the file does not exist"},
    {"HTTP2_PROTOCOL_ERROR", kBrokenOff},
    {"INCOMPLETE_CHUNKED_ENCODING", kBrokenOff},
    {"INCOMPLETE_HTTP2_RESPONSE", kBrokenOff},
    {"INTERNET_DISCONNECTED", "browser is offline"},
    {"INVALID_AUTH_CREDENTIALS", "the server wants credentials"},
    {"INVALID_CHUNKED_ENCODING", "the reply is not HTTP"},
    {"INVALID_HTTP_RESPONSE", "the reply is not HTTP"},
    {"INVALID_REDIRECT", "the server redirects to a malformed URL"},
    {"PROXY_CERTIFICATE_INVALID", "the proxy's certificate is not trusted"},
    {"PROXY_CONNECTION_FAILED", "cannot connect to the proxy"},
    {"RESPONSE_HEADERS_TOO_BIG", "the head of the reply is too large"},
    {"SSL_PROTOCOL_ERROR", "no secure connection"},
    {"TOO_MANY_REDIRECTS", "more than 20 redirects"},
    {"TUNNEL_CONNECTION_FAILED", "the proxy does not connect to the server"},
    {"UNSAFE_PORT", "the browser does not connect to this port"},
    {"UNSAFE_REDIRECT", "the server redirects to a URL that is neither http nor https"},
}};

} // namespace

std::string NetErrorText(const std::string& error, const std::string& url) {
    constexpr std::string_view prefix = "net::ERR_";
    if (!error.starts_with(prefix)) return error;
    const std::string_view name = std::string_view(error).substr(prefix.size());
    if (name == "NAME_NOT_RESOLVED") {
        const auto parsed = CurlUrl::Parse(url);
        return "host name not found" + (parsed ? ": " + parsed->Host() : std::string());
    }
    if (name == "ACCESS_DENIED" && !IsHttpUrl(url)) return "the file cannot be read";
    const auto found = std::find_if(kTexts.begin(), kTexts.end(),
                                    [&](const Entry& entry) { return entry.error == name; });
    return found == kTexts.end() ? "the browser reports " + error : found->text;
}

} // namespace platform
