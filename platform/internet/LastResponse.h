// What InternetGetLastResponseInfoA tells.
#pragma once

#include "internet/InternetFailure.h"

namespace platform {

// Why the calling thread's last attempt to open a URL failed; empty after one that did not.
InternetFailure& LastResponse();

} // namespace platform
