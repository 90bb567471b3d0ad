// What a server's status says.
#pragma once

#include <string>

namespace zrhttp {

// From here on a reply is an error page.
constexpr int kFirstErrorStatus = 400;

// The number with the standard's phrase ("404 Not Found"); the number alone where it has none.
std::string HttpStatusText(int status);

} // namespace zrhttp
