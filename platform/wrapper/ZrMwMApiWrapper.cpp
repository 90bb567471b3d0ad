// The library that answers the protected-mode question. It is loaded for each question, stands
// alone, and keeps nothing.
//
// It answers from zones.ini beside its own file:
//
//   [TrustedHosts]
//   www.example.test=1      this host; "=1" may be missing, "=0" takes it out
//   *.example.test          every host below example.test, but not example.test itself
//   [2001:db8::1]           an IPv6 address
//   ; a comment
//
// Trusted hosts open outside of protected mode, all others inside.

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <optional>
#include <string>
#include <string_view>

#include <dlfcn.h>

namespace {

constexpr int kProtected = 0;                                   // S_OK
constexpr int kNotProtected = 1;                                // S_FALSE
constexpr int kFailed = static_cast<int>(0x80004005u);          // E_FAIL
constexpr int kInvalidArgument = static_cast<int>(0x80070057u); // E_INVALIDARG
constexpr std::string_view kListName = "zones.ini";
constexpr std::string_view kSection = "trustedhosts";

std::string Folded(std::string_view text) {
    std::string folded(text);
    for (char& ch : folded)
        if (ch >= 'A' && ch <= 'Z') ch = static_cast<char>(ch - 'A' + 'a');
    return folded;
}

std::string_view Trimmed(std::string_view text) {
    constexpr std::string_view kBlanks = " \t\r\v\f";
    const std::size_t first = text.find_first_not_of(kBlanks);
    if (first == std::string_view::npos) return {};
    return text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

bool IsBlankOrControl(char ch) {
    return static_cast<unsigned char>(ch) <= ' ' || ch == '\x7f';
}

bool IsPort(std::string_view text) {
    return text.size() <= 5 &&
           std::ranges::all_of(text, [](char ch) { return ch >= '0' && ch <= '9'; });
}

std::optional<std::string> NonEmptyHost(std::string_view host) {
    if (host.ends_with('.')) host.remove_suffix(1); // the name's root
    if (host.empty()) return std::nullopt;
    return Folded(host);
}

// host-and-port = ( "[" address "]" / name ) [ ":" port ]
std::optional<std::string> HostOf(std::string_view hostAndPort) {
    const bool isAddress = hostAndPort.starts_with('[');
    const std::size_t end = isAddress ? hostAndPort.find(']') : hostAndPort.find(':');
    if (isAddress && end == std::string_view::npos) return std::nullopt;
    const std::string_view host = hostAndPort.substr(isAddress ? 1 : 0, isAddress ? end - 1 : end);
    std::string_view rest = hostAndPort.substr(std::min(end, hostAndPort.size()));
    if (isAddress) rest.remove_prefix(1);
    if (!rest.empty() && (rest.front() != ':' || !IsPort(rest.substr(1)))) return std::nullopt;
    return NonEmptyHost(host);
}

// The host of an http or https URL in small letters, an IPv6 address without its brackets.
//   url = scheme "://" [ user-information "@" ] host [ ":" port ] [ ( "/" / "?" / "#" ) ... ]
// A backslash ends the host as well: browsers take it for a slash.
std::optional<std::string> HostOfUrl(std::string_view url) {
    const std::size_t colon = url.find("://");
    if (colon == std::string_view::npos || std::ranges::any_of(url, IsBlankOrControl))
        return std::nullopt;
    const std::string scheme = Folded(url.substr(0, colon));
    if (scheme != "http" && scheme != "https") return std::nullopt;
    std::string_view authority = url.substr(colon + 3);
    authority = authority.substr(0, authority.find_first_of("/?#\\"));
    const std::size_t at = authority.rfind('@');
    return HostOf(at == std::string_view::npos ? authority : authority.substr(at + 1));
}

// The name between the brackets; nothing for other lines and for addresses, which hold colons.
std::optional<std::string_view> SectionName(std::string_view line) {
    if (!line.starts_with('[') || !line.ends_with(']')) return std::nullopt;
    const std::string_view name = Trimmed(line.substr(1, line.size() - 2));
    if (name.find(':') != std::string_view::npos) return std::nullopt;
    return name;
}

bool EntryCovers(std::string_view line, const std::string& host) {
    const std::size_t equals = std::min(line.find('='), line.size());
    if (equals < line.size() && Trimmed(line.substr(equals + 1)) == "0") return false;
    std::string entry = Folded(Trimmed(line.substr(0, equals)));
    if (entry.starts_with("*.")) {
        const std::string_view suffix = std::string_view(entry).substr(1);
        return host.size() > suffix.size() && host.ends_with(suffix);
    }
    if (entry.starts_with('[') && entry.ends_with(']')) entry = entry.substr(1, entry.size() - 2);
    return !entry.empty() && entry == host;
}

bool IsTrusted(std::istream& list, const std::string& host) {
    bool isInSection = false;
    for (std::string text; std::getline(list, text);) {
        std::string_view line = text;
        if (line.starts_with("\xEF\xBB\xBF")) line.remove_prefix(3);
        line = Trimmed(line);
        if (line.empty() || line.front() == ';') continue;
        if (const auto section = SectionName(line))
            isInSection = Folded(*section) == kSection;
        else if (isInSection && EntryCovers(line, host))
            return true;
    }
    return false;
}

std::filesystem::path ListBesideThisLibrary() {
    Dl_info info{};
    if (dladdr(reinterpret_cast<const void*>(&ListBesideThisLibrary), &info) == 0) return kListName;
    return std::filesystem::path(info.dli_fname).parent_path() / kListName;
}

int Answer(const char* url) {
    if (!url) return kInvalidArgument;
    const std::optional<std::string> host = HostOfUrl(url);
    if (!host) return kInvalidArgument;
    std::ifstream list(ListBesideThisLibrary());
    return IsTrusted(list, *host) ? kNotProtected : kProtected;
}

} // namespace

extern "C" __attribute__((visibility("default"))) int MAPI_IEIsProtectedModeURL(const char* url) {
    try {
        return Answer(url);
    } catch (...) {
        return kFailed;
    }
}
