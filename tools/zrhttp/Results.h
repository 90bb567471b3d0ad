// Where the commands that compose and reduce texts leave their results.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace CLI {
class App;
}

namespace zrhttp {

// --output FILE; without it, and for "-", results go to standard output.
void AddOutputOption(CLI::App& command, std::optional<std::string>& output);

// Tells ahead of the work whether the file can be written. Throws UsageError or SystemError.
void CheckDestination(const std::optional<std::string>& output);

// Exactly these bytes, but that a terminal gets them as text with control characters made visible.
void HandOutBytes(std::string_view bytes, const std::optional<std::string>& output = {});

// A text in the terminal's encoding; on a terminal, control characters are made visible.
void HandOutText(std::string_view utf8, const std::optional<std::string>& output = {});

} // namespace zrhttp
