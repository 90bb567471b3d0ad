#include "siblings/SecretMask.h"

#include <algorithm>
#include <array>

namespace {

constexpr std::string_view kMask = "***";

// Found anywhere in a name.
constexpr std::array<std::string_view, 9> kLongWords = {
    "passw", "kennwort", "pwd", "secret", "token", "session", "sessid", "auth", "credential"};
// Too short for that ("shipping", "standard", "inside"): a word of its own within the name.
constexpr std::array<std::string_view, 3> kShortWords = {"pin", "tan", "sid"};

bool IsBlank(char ch) {
    return static_cast<unsigned char>(ch) <= ' ' || ch == '\x7f';
}
bool IsUpper(char ch) {
    return ch >= 'A' && ch <= 'Z';
}
bool IsLetter(char ch) {
    return IsUpper(ch) || (ch >= 'a' && ch <= 'z');
}
char ToLower(char ch) {
    return IsUpper(ch) ? static_cast<char>(ch - 'A' + 'a') : ch;
}
bool IsAuthorityEnd(char ch) {
    return ch == '/' || ch == '?' || ch == '#' || ch == '"' || IsBlank(ch);
}
bool IsValueEnd(char ch) {
    return ch == '&' || ch == ';' || IsBlank(ch);
}
// Anything else ends a name on its left, so that a quoted form is known too: "Post(pin=1)".
bool IsNameCharacter(char ch) {
    return IsLetter(ch) || (ch >= '0' && ch <= '9') || ch == '_' || ch == '-' || ch == '.' ||
           ch == '$' || ch == '[' || ch == ']' || ch == '*' || ch == '+' || ch == '~' || ch == '%';
}

// "userPinTan2": words begin where another character ends or a capital follows a small letter.
template <class TVisit>
bool AnyWord(std::string_view name, TVisit visit) {
    for (std::size_t begin = 0; begin < name.size();) {
        std::size_t end = begin;
        while (end < name.size() && IsLetter(name[end]) &&
               (end == begin || !IsUpper(name[end]) || IsUpper(name[end - 1])))
            ++end;
        if (end > begin && visit(name.substr(begin, end - begin))) return true;
        begin = std::max(end, begin + 1);
    }
    return false;
}

std::string MaskUserInformation(std::string_view text) {
    std::string masked;
    while (true) {
        const std::size_t slashes = text.find("//");
        if (slashes == std::string_view::npos) break;
        // Browsers pass over further slashes.
        const std::size_t begin = std::min(text.find_first_not_of('/', slashes), text.size());
        masked += text.substr(0, begin);
        text.remove_prefix(begin);
        const auto end = std::ranges::find_if(text, IsAuthorityEnd);
        const std::string_view authority(text.begin(), end);
        const std::size_t at = authority.rfind('@');
        if (at != std::string_view::npos)
            masked.append(kMask).append(authority.substr(at));
        else
            masked += authority;
        text.remove_prefix(authority.size());
    }
    return masked.append(text);
}

// The name that ends where the text does.
std::string_view NameAtEnd(std::string_view text) {
    std::size_t begin = text.size();
    while (begin > 0 && IsNameCharacter(text[begin - 1]))
        --begin;
    return text.substr(begin);
}

std::string MaskFieldValues(std::string_view text) {
    std::string masked;
    while (true) {
        const std::size_t equals = text.find('=');
        if (equals == std::string_view::npos) break;
        masked += text.substr(0, equals + 1);
        const bool isSecret = IsSecretName(NameAtEnd(text.substr(0, equals)));
        text.remove_prefix(equals + 1);
        if (!isSecret) continue;
        masked += kMask;
        const auto end = std::ranges::find_if(text, IsValueEnd);
        text.remove_prefix(static_cast<std::size_t>(end - text.begin()));
    }
    return masked.append(text);
}

} // namespace

bool IsSecretName(std::string_view name) {
    std::string folded(name);
    std::ranges::transform(folded, folded.begin(), ToLower);
    const auto isPart = [&](std::string_view word) { return folded.find(word) != folded.npos; };
    if (std::ranges::any_of(kLongWords, isPart)) return true;
    return AnyWord(name, [](std::string_view word) {
        return std::ranges::any_of(kShortWords, [&](std::string_view secret) {
            return std::ranges::equal(word, secret, {}, ToLower);
        });
    });
}

std::string MaskSecrets(std::string_view text) {
    return MaskFieldValues(MaskUserInformation(text));
}
