// What MaskSecrets and UrlForLog share.
#pragma once

#include <string>
#include <string_view>

namespace platform {

enum class TextBegin { anywhere, authority };

// MaskSecrets; with TextBegin::authority the text begins as a URL does behind its slashes.
std::string MaskSecretsIn(std::string_view text, TextBegin begin);

} // namespace platform
