// Names that tell of a secret.
#pragma once

#include <string_view>

namespace platform {

// Whether a field of that name holds a secret: password, PIN, TAN, token, session and the like, in
// the spellings that forms use ("userPin", "tan_1", "loginpin", "PHPSESSID"), without regard to
// case. Decided by the words of the name, so that "spinner" and "passage" hold none.
bool IsSecretName(std::string_view name);

} // namespace platform
