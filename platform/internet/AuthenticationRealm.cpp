#include "internet/AuthenticationRealm.h"

#include <algorithm>
#include <cctype>

namespace platform {
namespace {

constexpr std::size_t kMaxRealmLength = 200;
constexpr std::string_view kName = "realm=";

bool EqualsIgnoringCase(char a, char b) {
    return std::tolower(static_cast<unsigned char>(a)) == b;
}

// The text behind the opening quote.
std::string Unquote(std::string_view text) {
    std::string value;
    for (std::size_t at = 0; at < text.size() && text[at] != '"'; ++at) {
        if (text[at] == '\\' && at + 1 < text.size()) ++at;
        value += text[at];
    }
    return value;
}

} // namespace

std::string RealmOf(std::string_view challenges) {
    const auto* const found = std::search(challenges.begin(), challenges.end(), kName.begin(),
                                          kName.end(), EqualsIgnoringCase);
    if (found == challenges.end()) return {};
    const std::string_view rest(found + kName.size(), challenges.end());
    std::string realm = rest.starts_with('"')
                            ? Unquote(rest.substr(1))
                            : std::string(rest.substr(0, rest.find_first_of(", ")));
    std::erase_if(realm, [](unsigned char ch) { return ch < 0x20 || ch == 0x7F; });
    return realm.substr(0, kMaxRealmLength);
}

} // namespace platform
