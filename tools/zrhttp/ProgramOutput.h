// Another program's standard output.
#pragma once

#include <chrono>
#include <optional>
#include <string>

namespace zrhttp {

// Runs `file --version` in a process group of its own, without input and with its error output
// dropped, and returns the first line that it prints. Nothing when it cannot be run, fails or
// takes longer than `patience`; its group is killed then.
std::optional<std::string> VersionOfProgram(const std::string& file,
                                            std::chrono::milliseconds patience);

} // namespace zrhttp
