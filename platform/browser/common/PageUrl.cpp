#include "browser/common/PageUrl.h"

#include <algorithm>
#include <array>

#include <platform/CodePage.h>

#include "browser/common/BrowserLimits.h"
#include "internet/CurlUrl.h"

namespace platform {
namespace {

constexpr std::string_view kFilePrefix = "file://";
// File URLs are resolved by the rules of http URLs: the URL library knows no drive letters.
constexpr std::string_view kFileStandIn = "http://file-page.invalid";

bool IsLetter(char ch) {
    return (ch >= 'a' && ch <= 'z') || (ch >= 'A' && ch <= 'Z');
}
bool IsDigit(char ch) {
    return ch >= '0' && ch <= '9';
}
bool IsSlash(char ch) {
    return ch == '/' || ch == '\\';
}

void AppendEscaped(std::string& target, char ch) {
    constexpr std::string_view digits = "0123456789ABCDEF";
    const auto byte = static_cast<unsigned char>(ch);
    target += '%';
    target += digits[byte >> 4];
    target += digits[byte & 15];
}

// Blanks, non-ASCII bytes and the characters that no URL may hold unescaped.
std::string EscapeUnsafe(std::string_view text) {
    std::string escaped;
    escaped.reserve(text.size());
    for (const char ch : text) {
        const auto byte = static_cast<unsigned char>(ch);
        if (byte <= 0x20 || byte >= 0x7F || ch == '"' || ch == '<' || ch == '>' || ch == '`')
            AppendEscaped(escaped, ch);
        else
            escaped += ch;
    }
    return escaped;
}

// In http URLs a backslash before the query means a slash.
std::string WithForwardSlashes(std::string_view text) {
    std::string changed(text);
    const auto end = changed.begin() + static_cast<std::ptrdiff_t>(
                                           std::min(changed.find_first_of("?#"), changed.size()));
    std::replace(changed.begin(), end, '\\', '/');
    return changed;
}

std::string FileUrlOfPath(std::string_view path) {
    std::string url = std::string(kFilePrefix) + '/';
    while (!path.empty() && IsSlash(path.front())) // many mean one
        path.remove_prefix(1);
    for (const char ch : path) {
        const bool isPlain = IsLetter(ch) || IsDigit(ch) ||
                             std::string_view("/:-._~").find(ch) != std::string_view::npos;
        if (ch == '\\')
            url += '/';
        else if (isPlain)
            url += ch;
        else
            AppendEscaped(url, ch);
    }
    return url;
}

bool IsDrivePath(std::string_view text) {
    return text.size() >= 3 && IsLetter(text[0]) && text[1] == ':' && IsSlash(text[2]);
}

// "host:8080/..." looks like a scheme and is none.
bool IsHostWithPort(std::string_view rest) {
    const std::size_t digits = static_cast<std::size_t>(
        std::find_if_not(rest.begin(), rest.end(), IsDigit) - rest.begin());
    return digits > 0 && (digits == rest.size() ||
                          std::string_view("/\\?#").find(rest[digits]) != std::string_view::npos);
}

std::optional<PageUrl> FilePage(std::string_view text, std::string& error) {
    std::string path = WithForwardSlashes(text.substr(5)); // behind "file:"
    if (path.starts_with("//localhost/")) path.erase(0, 11);
    if (path.starts_with("///")) path.erase(0, 2);
    if (path.starts_with("//") || !path.starts_with("/")) {
        error = "a file URL must name an absolute path on this computer";
        return std::nullopt;
    }
    return PageUrl{std::string(kFilePrefix) + EscapeUnsafe(path), {}, {}};
}

std::optional<PageUrl> HttpPage(std::string_view text, std::string& error) {
    const std::string slashed = WithForwardSlashes(text);
    const std::size_t begin = slashed.find("://");
    const std::size_t host = begin == std::string::npos ? begin : begin + 3;
    if (host == std::string::npos || host >= slashed.size() || slashed[host] == '/') {
        error = "the URL names no host";
        return std::nullopt;
    }
    const std::size_t hostEnd = std::min(slashed.find_first_of("/?#", host), slashed.size());
    if (slashed.substr(host, hostEnd - host).find(' ') != std::string::npos) {
        error = "the host name in the URL holds a blank";
        return std::nullopt;
    }
    auto url = CurlUrl::Parse(EscapeUnsafe(slashed));
    if (!url || url->Host().empty()) {
        error = "the URL is malformed";
        return std::nullopt;
    }
    if (!url->EncodeHost()) {
        error = "the URL's host is no valid name";
        return std::nullopt;
    }
    PageUrl page{{}, url->User(), url->Password()};
    url->RemoveUserInfo();
    page.url = url->Text();
    return page;
}

// Where control characters, size and emptiness are in order.
std::optional<PageUrl> ParseTypedUrl(const std::string& text, std::string& error) {
    if (IsDrivePath(text) || text.front() == '/') return PageUrl{FileUrlOfPath(text), {}, {}};
    const std::string scheme = SchemeOf(text);
    const std::string_view rest =
        std::string_view(text).substr(scheme.empty() ? 0 : scheme.size() + 1);
    if (scheme.empty() || (!rest.starts_with("//") && IsHostWithPort(rest)))
        return HttpPage("http://" + text, error);
    if (scheme == "http" || scheme == "https") return HttpPage(text, error);
    if (scheme == "file") return FilePage(text, error);
    if (scheme == "about" && rest == "blank") return PageUrl{"about:blank", {}, {}};
    error = "scheme \"" + scheme + "\" is not supported: use http, https or file";
    return std::nullopt;
}

} // namespace

std::optional<PageUrl> ParsePageUrl(std::u16string_view text, std::string& error) {
    while (text.starts_with(u' '))
        text.remove_prefix(1);
    while (text.ends_with(u' '))
        text.remove_suffix(1);
    if (text.empty())
        error = "the URL is empty";
    else if (text.size() > kMaxUrlLength)
        error = "the URL is longer than " + std::to_string(kMaxUrlLength) + " characters";
    else if (std::any_of(text.begin(), text.end(),
                         [](char16_t ch) { return ch < 0x20 || ch == 0x7F; }))
        error = "the URL holds a control character";
    else
        return ParseTypedUrl(Utf8FromWide(text), error);
    return std::nullopt;
}

std::optional<std::string> ResolveReference(const std::string& baseUrl,
                                            std::string_view reference) {
    const auto isBlank = [](char ch) { return static_cast<unsigned char>(ch) <= 0x20; };
    while (!reference.empty() && isBlank(reference.front()))
        reference.remove_prefix(1);
    while (!reference.empty() && isBlank(reference.back()))
        reference.remove_suffix(1);
    std::string cleaned;
    std::copy_if(reference.begin(), reference.end(), std::back_inserter(cleaned),
                 [](char ch) { return ch != '\t' && ch != '\r' && ch != '\n'; });
    if (cleaned.size() > kMaxUrlLength) return std::nullopt;

    const std::string scheme = SchemeOf(cleaned);
    if (scheme == "file") {
        std::string error;
        const auto page = FilePage(cleaned, error);
        return page ? std::optional(page->url) : std::nullopt;
    }
    const bool isOther = !scheme.empty() && scheme != "http" && scheme != "https";
    if (isOther) return cleaned;

    const bool isFile = baseUrl.starts_with(kFilePrefix);
    const auto base = CurlUrl::Parse(
        isFile ? std::string(kFileStandIn) + baseUrl.substr(kFilePrefix.size()) : baseUrl);
    if (!base) return std::nullopt;
    auto resolved = base->Resolve(EscapeUnsafe(WithForwardSlashes(cleaned)));
    if (!resolved || !resolved->EncodeHost()) return std::nullopt;
    resolved->RemoveUserInfo();
    const std::string url = resolved->Text();
    if (isFile && url.starts_with(kFileStandIn))
        return std::string(kFilePrefix) + url.substr(kFileStandIn.size());
    return url;
}

std::string SchemeOf(std::string_view url) {
    std::string scheme;
    for (const char ch : url) {
        if (ch == ':') return scheme;
        const bool isSchemeCharacter =
            IsLetter(ch) ||
            (!scheme.empty() && (IsDigit(ch) || ch == '+' || ch == '-' || ch == '.'));
        if (!isSchemeCharacter) break;
        scheme += ch >= 'A' && ch <= 'Z' ? static_cast<char>(ch - 'A' + 'a') : ch;
    }
    return {};
}

bool IsHttpUrl(std::string_view url) {
    const std::string scheme = SchemeOf(url);
    return scheme == "http" || scheme == "https";
}

std::string WithoutFragment(const std::string& url) {
    return url.substr(0, url.find('#'));
}

std::string OriginOf(const std::string& url) {
    const auto parsed = IsHttpUrl(url) ? CurlUrl::Parse(url) : std::nullopt;
    return parsed ? parsed->Origin() : std::string();
}

} // namespace platform
