// Applications whose windows stay open for their user although no browser object is left.
#pragma once

#include <memory>
#include <mutex>
#include <vector>

#include "browser/chromium/ChromiumProcess.h"

namespace platform {

// Process-wide. They end when their user closes the last window, or with this process.
class KeptApplications {
public:
    static KeptApplications& Get();
    // Lets go of those that have ended meanwhile.
    void Keep(std::shared_ptr<ChromiumProcess> process);

private:
    std::mutex m_mutex;
    std::vector<std::shared_ptr<ChromiumProcess>> m_processes;
};

} // namespace platform
