// The encoding that a page declares of itself.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace zrhttp {

// From a meta element in the first 1024 bytes, found by the HTML standard's prescan: <meta
// charset=...> or <meta http-equiv=content-type content="...; charset=...">. Nothing without one
// of a known encoding.
std::optional<std::string> EncodingFromMeta(std::string_view page);

} // namespace zrhttp
