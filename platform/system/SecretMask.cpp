#include "system/SecretMask.h"

#include <algorithm>
#include <vector>

#include <platform/Secrets.h>

#include "system/DecodedText.h"
#include "system/SecretNames.h"

namespace platform {

namespace {

constexpr auto kNowhere = std::string_view::npos;

bool IsBlank(char ch) {
    return static_cast<unsigned char>(ch) <= ' ' || ch == '\x7f';
}
bool IsSlash(char ch) {
    return ch == '/' || ch == '\\';
}
bool IsDigit(char ch) {
    return ch >= '0' && ch <= '9';
}
bool IsLetter(char ch) {
    return (ch >= 'a' && ch <= 'z') || (ch >= 'A' && ch <= 'Z');
}
bool EndsUrl(char ch) {
    return ch == '"' || IsBlank(ch);
}
bool EndsAuthority(char ch) {
    return ch == '/' || ch == '?' || ch == '#' || EndsUrl(ch);
}
// Anything else ends a name on its left, so that a quoted form is known too: "Post(pin=1)".
bool IsNameCharacter(char ch) {
    constexpr std::string_view kMarks = "_-.$[]*+~%";
    return IsLetter(ch) || IsDigit(ch) || kMarks.find(ch) != kNowhere;
}

// "http:" and "https:", which browsers take any number of slashes behind.
bool EndsWithWebScheme(std::string_view text) {
    constexpr std::string_view kSchemes[] = {"https:", "http:"};
    return std::ranges::any_of(kSchemes, [&](std::string_view scheme) {
        return text.size() >= scheme.size() &&
               std::ranges::equal(text.substr(text.size() - scheme.size()), scheme, {},
                                  [](char ch) { return ch >= 'A' && ch <= 'Z' ? ch | 0x20 : ch; });
    });
}

// What follows the host is no port: it is more likely the beginning of a password that holds a
// "/", "?" or "#".
bool HasImpossiblePort(std::string_view authority) {
    const std::size_t host = authority.starts_with('[') ? authority.find(']') : 0;
    const std::size_t colon = authority.find(':', host == kNowhere ? 0 : host);
    return colon != kNowhere && !std::ranges::all_of(authority.substr(colon + 1), IsDigit);
}

// Collects what is kept of a text and puts a mask between.
class MaskedText {
public:
    MaskedText(std::string_view text, const DecodedText& letters)
        : m_text(text), m_letters(letters) {}

    void Mask(std::size_t begin, std::size_t end) {
        const std::size_t place = m_letters.PlaceInText(begin);
        m_masked.append(m_text.substr(m_kept, place - m_kept)).append("***");
        m_kept = m_letters.PlaceInText(end);
    }
    std::string Take() { return std::move(m_masked.append(m_text.substr(m_kept))); }

private:
    const std::string_view m_text;
    const DecodedText& m_letters;
    std::string m_masked;
    std::size_t m_kept = 0;
};

class UserInformation {
public:
    explicit UserInformation(std::string_view text) : m_letters(text), m_masked(text, m_letters) {}

    std::string Masked(TextBegin begin) {
        std::size_t next = begin == TextBegin::authority ? MaskAuthority(0, 0) : 0;
        while (next < m_letters.Size())
            next = Step(next);
        return m_masked.Take();
    }

private:
    // Masks what begins there, if anything does; where to go on.
    std::size_t Step(std::size_t at) {
        const std::string_view letters = m_letters.Letters();
        const bool isSlash = IsSlash(letters[at]);
        if (!isSlash && letters[at] != ':' && letters[at] != '_') return at + 1;
        const std::size_t slashes = isSlash ? at : at + 1;
        const unsigned depth = m_letters.Depth(at);
        std::size_t begin = slashes;
        while (begin < letters.size() && IsSlash(letters[begin]) && m_letters.Depth(begin) <= depth)
            ++begin;
        const std::size_t count = begin - slashes;
        if (letters[at] == '_' && count > 0) return MaskInName(begin);
        const bool hasScheme = letters[at] == ':' && EndsWithWebScheme(letters.substr(0, slashes));
        return hasScheme || count > 1 ? MaskAuthority(begin, depth) : begin;
    }

    std::size_t MaskAuthority(std::size_t begin, unsigned depth) {
        std::size_t end = begin;
        while (end < m_letters.Size() &&
               !(EndsAuthority(m_letters[end]) && m_letters.Depth(end) <= depth))
            ++end;
        const std::string_view authority = m_letters.Letters().substr(begin, end - begin);
        const std::size_t at = authority.rfind('@');
        if (at != kNowhere) m_masked.Mask(begin, begin + at);
        return at == kNowhere && HasImpossiblePort(authority) ? std::max(end, MaskInName(begin))
                                                              : end;
    }

    // Up to the last "@" that belongs to the URL, however its parts are told apart there.
    std::size_t MaskInName(std::size_t begin) {
        if (begin >= m_urlEnd) FindUrlEnd(begin);
        if (m_lastAt == kNowhere || m_lastAt < begin) return begin;
        m_masked.Mask(begin, m_lastAt);
        return m_lastAt;
    }

    void FindUrlEnd(std::size_t begin) {
        m_lastAt = kNowhere;
        for (m_urlEnd = begin; m_urlEnd < m_letters.Size(); ++m_urlEnd) {
            if (EndsUrl(m_letters[m_urlEnd]) && m_letters.Depth(m_urlEnd) == 0) break;
            if (m_letters[m_urlEnd] == '@') m_lastAt = m_urlEnd;
        }
    }

    const DecodedText m_letters;
    MaskedText m_masked;
    std::size_t m_urlEnd = 0; // of the URL that was looked at last
    std::size_t m_lastAt = kNowhere;
};

class FieldValues {
public:
    explicit FieldValues(std::string_view text) : m_letters(text), m_masked(text, m_letters) {}

    std::string Masked() {
        const std::string_view letters = m_letters.Letters();
        for (std::size_t equals = letters.find('='); equals != kNowhere;) {
            std::size_t next = equals + 1;
            if (IsSecretName(NameBefore(equals))) {
                next = ValueEnd(next, m_letters.Depth(equals));
                m_masked.Mask(equals + 1, next);
            }
            equals = letters.find('=', next);
        }
        return m_masked.Take();
    }

private:
    std::string_view NameBefore(std::size_t equals) const {
        std::size_t begin = equals;
        while (begin > 0 && IsNameCharacter(m_letters[begin - 1]))
            --begin;
        return m_letters.Letters().substr(begin, equals - begin);
    }

    // What is encoded deeper than the field itself belongs to its value.
    std::size_t ValueEnd(std::size_t begin, unsigned depth) const {
        for (std::size_t end = begin; end < m_letters.Size(); ++end) {
            if (m_letters.Depth(end) > depth) continue;
            const char ch = m_letters[end];
            const bool isSeparator = ch == '&' || ch == ';';
            if (IsBlank(ch) || (isSeparator && IsField(end + 1))) return end;
        }
        return m_letters.Size();
    }

    bool IsField(std::size_t begin) const {
        while (begin < m_letters.Size() && IsNameCharacter(m_letters[begin]))
            ++begin;
        return begin < m_letters.Size() && m_letters[begin] == '=';
    }

    const DecodedText m_letters;
    MaskedText m_masked;
};

} // namespace

std::string MaskSecretsIn(std::string_view text, TextBegin begin) {
    return FieldValues(UserInformation(text).Masked(begin)).Masked();
}

std::string MaskSecrets(std::string_view text) {
    return MaskSecretsIn(text, TextBegin::anywhere);
}

} // namespace platform
