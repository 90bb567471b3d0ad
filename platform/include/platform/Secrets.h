// Takes secrets out of texts that people read: the log, messages, traces.
#pragma once

#include <string>
#include <string_view>

#include "Export.h"
#include "String.h"

ZRHB_EXPORT_BEGIN

namespace platform {

// The text with "***" for
//   - the user information of URLs: "//user:secret@host" becomes "//***@host". It begins behind the
//     slashes and ends at the last "@" before the next "/", "?", "#", double quote or blank, and at
//     the last one before a blank where what looks like a port is none ("//user:sec/ret@host") or
//     where a file is named after a URL ("http_\user_secret@host");
//   - the values of fields whose name tells of a secret: "name=value" becomes "name=***". The value
//     ends at a blank, or at an "&" or ";" behind which another name and "=" follow.
// Blanks are the space and all control characters. Percent-encoding of any depth is looked through:
// a URL within a value is masked as one that stands alone, and what is encoded within a value does
// not end it. Rather a harmless value masked than a secret shown. Linear.
std::string MaskSecrets(std::string_view text);

// The same of one URL, which may lack its scheme; without query and fragment ("?..." stands for a
// query), control characters as "\xNN".
CString UrlForLog(std::string_view url);

} // namespace platform

ZRHB_EXPORT_END
