// Takes secrets out of texts before they are logged.
#pragma once

#include <string>
#include <string_view>

// The text with
//   - the user information of URLs replaced: "//user:secret@host" becomes "//***@host". It begins
//     behind the slashes and ends at the last "@" before the next "/", "?", "#", double quote or
//     blank;
//   - the values of fields with a secret's name replaced: "name=value" becomes "name=***". The
//     value ends at the next "&", ";" or blank.
// Blanks are the space and all control characters. Rather a harmless value masked than a secret
// logged. Linear.
std::string MaskSecrets(std::string_view text);

// Whether a field of that name holds a secret: password, PIN, TAN, token, session and the like, in
// the spellings that forms use ("userPin", "tan_1", "PHPSESSID"), without regard to case.
bool IsSecretName(std::string_view name);
