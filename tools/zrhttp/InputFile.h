// Reading what is to be sent.
#pragma once

#include <string>

namespace zrhttp {

// All bytes of a file, or of standard input for "-". Throws UsageError when it cannot be read or
// is larger than a request may be.
std::string ReadInput(const std::string& path);

} // namespace zrhttp
