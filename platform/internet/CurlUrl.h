// A parsed absolute URL (RFC 3986), as the transfer library sees it.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include <curl/urlapi.h>

namespace platform {

class CurlUrl {
public:
    // Empty when the text is no absolute URL. Schemes that cannot be fetched are parsed, too.
    static std::optional<CurlUrl> Parse(const std::string& url);

    // A reference found in the document at this URL; empty when it leads nowhere that has a host.
    std::optional<CurlUrl> Resolve(const std::string& reference) const;

    std::string Text() const;
    std::string Scheme() const; // lower case
    std::string Host() const;   // without port; "[...]" around IPv6 addresses
    std::string Fragment() const;
    std::string User() const;     // percent-decoded
    std::string Password() const; // percent-decoded
    // Path and query, as a request line has them.
    std::string Target() const;
    // The scheme's own port when the URL names none; 0 when it has none.
    std::uint16_t Port() const;
    // Scheme, host and port: what must be equal for two URLs to be of one origin.
    std::string Origin() const;

    // The host as it is looked up: ASCII, with "xn--" labels (UTS #46). False when it is no name.
    bool EncodeHost();
    void RemoveUserInfo();
    void SetFragment(const std::string& fragment);

private:
    struct Cleanup {
        void operator()(CURLU* url) const { curl_url_cleanup(url); }
    };
    using Handle = std::unique_ptr<CURLU, Cleanup>;

    explicit CurlUrl(Handle handle) : m_handle(std::move(handle)) {}
    std::string Part(CURLUPart part, unsigned flags = 0) const;

    Handle m_handle;
};

} // namespace platform
