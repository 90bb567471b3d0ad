// The transfer library's process-wide state.
#pragma once

namespace platform {

// Sets the library up on first use; any thread, any number of times.
void EnsureCurlIsReady();

} // namespace platform
