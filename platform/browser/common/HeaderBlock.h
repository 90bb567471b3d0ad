// The caller's header block: lines "Name: value", each ending in CR LF (RFC 9112).
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace platform {

struct HeaderField {
    std::string name;
    std::string value; // byte for byte, without the blanks around it
};

// Empty, with the reason in plain words (no values repeated), when the block could not go out
// exactly as given. bodyLength is what a Content-Length of the caller must say; that field itself
// is left out, the engine writes it.
std::optional<std::vector<HeaderField>>
ParseHeaderBlock(std::string_view block, std::size_t bodyLength, std::string& error);

// ASCII letters only.
bool EqualsIgnoringCase(std::string_view a, std::string_view b);
// RFC 9110, section 5.6.2.
bool IsToken(std::string_view text);

} // namespace platform
