#include "system/SecretNames.h"

#include <algorithm>
#include <string>
#include <vector>

namespace platform {

namespace {

enum class Role {
    part,     // tells of a secret wherever it stands in a word
    word,     // does so alone, and between the words that go with it
    before,   // goes with such a word: "login" in "loginpin"
    after,    // "nummer" in "tannummer"
    harmless, // a word that has such a part by chance
};

struct WordList {
    Role role;
    std::string_view words; // separated by blanks
};

constexpr WordList kWordLists[] = {
    {Role::part, "passw passphr kennwor kennwoer pwd pswd secret geheim credential"},
    {Role::part, "token session sessid auth bearer signatur saml csrf xsrf"},
    {Role::part, "apikey accesskey privatekey privkey signingkey encryptionkey masterkey"},
    {Role::part, "pushtan smstan chiptan phototan tannummer pincode loginpin smscode"},
    {Role::part, "onetime einmalcode securitycode sicherheitscode verificationcode zugangscode"},
    {Role::part, "freischaltcode aktivierungscode pruefziffer losungswor kreditkart"},
    {Role::part, "kontonummer kontonr ktonr kartennummer accountnumber cardnumber creditcard"},
    {Role::word, "pin tan sid pw psw pass pword psk otp totp cvv cvc cvn puk jwt sig cookie"},
    {Role::word, "iban bban pan ticket assertion creds"},
    {Role::before,
     "i m e u x my mein meine new old neu neue neuer alt alte alter current aktuelle"},
    {Role::before, "login log user usr online web net bank banking ebanking card karten konto"},
    {Role::before, "account acc db mail admin root sms push chip photo foto qr app mobile mobil"},
    {Role::before, "index secure sec sign hash confirm repeat first erste creditor debtor sender"},
    {Role::before, "empfaenger auftraggeber receiver recipient"},
    {Role::after, "code nummer nummern number nr no num value val wert field feld input text neu"},
    {Role::after, "alt new old hash list liste id key wdh wiederholung confirm repeat card"},
    {Role::harmless, "author authors authority authorities coauthor coauthors secretary"},
    {Role::harmless, "secretaries secretariat autokennzeichen"},
};

// Longer than any word between two others; what is longer holds none, parts apart.
constexpr std::size_t kLongestCompound = 40;

template <class TVisit>
bool AnyOf(Role role, TVisit visit) {
    for (const WordList& list : kWordLists) {
        if (list.role != role) continue;
        for (std::size_t begin = 0; begin < list.words.size();) {
            const std::size_t end = std::min(list.words.find(' ', begin), list.words.size());
            if (visit(list.words.substr(begin, end - begin))) return true;
            begin = end + 1;
        }
    }
    return false;
}

bool Is(Role role, std::string_view word) {
    return AnyOf(role, [&](std::string_view known) { return known == word; });
}

bool HasPart(std::string_view word) {
    return AnyOf(Role::part, [&](std::string_view part) { return word.find(part) != word.npos; });
}

bool BeginsWithPart(std::string_view word) {
    return AnyOf(Role::part, [&](std::string_view part) { return word.starts_with(part); });
}

bool IsWordWithEnd(std::string_view word) {
    return Is(Role::word, word) || AnyOf(Role::after, [&](std::string_view end) {
               return word.ends_with(end) &&
                      Is(Role::word, word.substr(0, word.size() - end.size()));
           });
}

bool IsCompound(std::string_view word) {
    if (word.size() > kLongestCompound) return false;
    return IsWordWithEnd(word) || AnyOf(Role::before, [&](std::string_view begin) {
               return word.starts_with(begin) && IsWordWithEnd(word.substr(begin.size()));
           });
}

bool IsCapitalLetter(char ch) {
    return ch >= 'A' && ch <= 'Z';
}
bool IsNameLetter(char ch) {
    return IsCapitalLetter(ch) || (ch >= 'a' && ch <= 'z');
}

struct Word {
    std::string text; // in small letters
    bool isJoined;    // only its capital tells it from the word before
};

// "userPinTan2": words begin where another character ends or a capital follows a small letter.
std::vector<Word> WordsOf(std::string_view name) {
    std::vector<Word> words;
    char before = '\0';
    for (const char ch : name) {
        const bool isNew =
            !IsNameLetter(before) || (IsCapitalLetter(ch) && !IsCapitalLetter(before));
        if (IsNameLetter(ch)) {
            if (isNew) words.push_back({"", IsNameLetter(before)});
            words.back().text += IsCapitalLetter(ch) ? static_cast<char>(ch - 'A' + 'a') : ch;
        }
        before = ch;
    }
    return words;
}

// "api_key", "PassWord".
bool IsSecretPair(const Word& first, const Word& second) {
    const std::string pair = first.text + second.text;
    return Is(Role::word, pair) || (second.isJoined ? HasPart(pair) : BeginsWithPart(pair));
}

} // namespace

bool IsSecretName(std::string_view name) {
    std::vector<Word> words = WordsOf(name);
    std::erase_if(words, [](const Word& word) { return Is(Role::harmless, word.text); });
    for (std::size_t i = 0; i < words.size(); ++i) {
        if (HasPart(words[i].text) || IsCompound(words[i].text)) return true;
        if (i > 0 && IsSecretPair(words[i - 1], words[i])) return true;
    }
    return false;
}

} // namespace platform
