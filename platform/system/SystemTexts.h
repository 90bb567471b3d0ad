// The system's texts for error numbers and interface status codes.
#pragma once

#include <platform/Types.h>

namespace platform {

// The text for a system error number or a status code (a status code that wraps a system error
// number has that number's text); null for a number without one. Static memory.
const char* FindSystemText(DWORD dwNumber);

} // namespace platform
