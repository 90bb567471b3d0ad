#include "internet/CurlUrl.h"

#include <algorithm>
#include <cstdlib>
#include <memory>

#include <curl/curl.h>
#include <idn2.h>

namespace platform {
namespace {

std::string LowerAscii(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(), [](char ch) {
        return ch >= 'A' && ch <= 'Z' ? static_cast<char>(ch - 'A' + 'a') : ch;
    });
    return text;
}

} // namespace

std::optional<CurlUrl> CurlUrl::Parse(const std::string& url) {
    if (url.find('\0') != std::string::npos) return std::nullopt;
    Handle handle(curl_url());
    if (!handle || curl_url_set(handle.get(), CURLUPART_URL, url.c_str(),
                                CURLU_NON_SUPPORT_SCHEME) != CURLUE_OK)
        return std::nullopt;
    return CurlUrl(std::move(handle));
}

std::optional<CurlUrl> CurlUrl::Resolve(const std::string& reference) const {
    if (reference.find('\0') != std::string::npos) return std::nullopt;
    Handle handle(curl_url_dup(m_handle.get()));
    if (!handle) return std::nullopt;
    // The fragment is taken off first: a reference that is nothing else means the same document.
    const std::size_t hash = reference.find('#');
    const std::string target = reference.substr(0, hash);
    if (!target.empty() && curl_url_set(handle.get(), CURLUPART_URL, target.c_str(),
                                        CURLU_NON_SUPPORT_SCHEME) != CURLUE_OK)
        return std::nullopt;
    CurlUrl resolved(std::move(handle));
    resolved.SetFragment(hash == std::string::npos ? "" : reference.substr(hash + 1));
    return resolved;
}

std::string CurlUrl::Part(CURLUPart part, unsigned flags) const {
    char* text = nullptr;
    if (curl_url_get(m_handle.get(), part, &text, flags) != CURLUE_OK) return {};
    std::string copy(text);
    curl_free(text);
    return copy;
}

std::string CurlUrl::Text() const {
    return Part(CURLUPART_URL);
}
std::string CurlUrl::Scheme() const {
    return LowerAscii(Part(CURLUPART_SCHEME));
}
std::string CurlUrl::Host() const {
    return Part(CURLUPART_HOST);
}
std::string CurlUrl::Fragment() const {
    return Part(CURLUPART_FRAGMENT);
}
std::string CurlUrl::User() const {
    return Part(CURLUPART_USER, CURLU_URLDECODE);
}
std::string CurlUrl::Password() const {
    return Part(CURLUPART_PASSWORD, CURLU_URLDECODE);
}

std::string CurlUrl::Target() const {
    const std::string query = Part(CURLUPART_QUERY);
    return Part(CURLUPART_PATH) + (query.empty() ? "" : "?" + query);
}

std::uint16_t CurlUrl::Port() const {
    const std::string port = Part(CURLUPART_PORT, CURLU_DEFAULT_PORT);
    return static_cast<std::uint16_t>(std::strtoul(port.c_str(), nullptr, 10));
}

std::string CurlUrl::Origin() const {
    return Scheme() + "://" + LowerAscii(Host()) + ":" + std::to_string(Port());
}

// libcurl would do so when it connects, but in the character set of the process's locale.
bool CurlUrl::EncodeHost() {
    const std::string host = Host();
    const auto isAscii = [](char ch) { return static_cast<unsigned char>(ch) < 128; };
    if (std::all_of(host.begin(), host.end(), isAscii)) return true;
    char* encoded = nullptr;
    if (idn2_to_ascii_8z(host.c_str(), &encoded, IDN2_NFC_INPUT | IDN2_NONTRANSITIONAL) != IDN2_OK)
        return false;
    const std::unique_ptr<char, decltype(&idn2_free)> owned(encoded, idn2_free);
    if (curl_url_set(m_handle.get(), CURLUPART_HOST, encoded, 0) != CURLUE_OK) return false;
    // Once more from the text: the name may have become a number, which is an address.
    return curl_url_set(m_handle.get(), CURLUPART_URL, Text().c_str(), CURLU_NON_SUPPORT_SCHEME) ==
           CURLUE_OK;
}

void CurlUrl::RemoveUserInfo() {
    curl_url_set(m_handle.get(), CURLUPART_USER, nullptr, 0);
    curl_url_set(m_handle.get(), CURLUPART_PASSWORD, nullptr, 0);
}

void CurlUrl::SetFragment(const std::string& fragment) {
    curl_url_set(m_handle.get(), CURLUPART_FRAGMENT, fragment.empty() ? nullptr : fragment.c_str(),
                 0);
}

} // namespace platform
