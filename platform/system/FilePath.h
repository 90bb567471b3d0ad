// The parts of a file's name.
#pragma once

#include <string>

namespace platform {

// What symbolic links lead to, also when it is still to be made; else the name itself.
std::string BehindLinks(const std::string& name);
// "." for a name without a directory.
std::string DirectoryOf(const std::string& name);

} // namespace platform
