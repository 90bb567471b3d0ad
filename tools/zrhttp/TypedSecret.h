// A secret that a person types.
#pragma once

#include <string>

namespace zrhttp {

// One line typed at the terminal that is standard input, ended by the enter key or Ctrl-D, without
// its end; "NAME: " on standard error asks for it, and the terminal does not show it. An interrupt
// leaves the terminal as it was. Throws UsageError and SystemError.
std::string TypedSecret(const std::string& name);

} // namespace zrhttp
