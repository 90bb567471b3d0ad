#include "browser/chromium/KeptApplications.h"

#include "browser/chromium/PostGuard.h"

namespace platform {

KeptApplications& KeptApplications::Get() {
    static KeptApplications kept;
    return kept;
}

void KeptApplications::Keep(std::shared_ptr<ChromiumProcess> process) {
    DevToolsConnection& connection = process->Connection();
    connection.SetEventHandler({});
    connection.SetEndHandler({});
    connection.Posts().Release();
    // Its further pop-ups are its user's.
    connection.Send({}, "Target.setAutoAttach",
                    {{"autoAttach", false}, {"waitForDebuggerOnStart", false}, {"flatten", true}});
    std::vector<std::shared_ptr<ChromiumProcess>> ended; // let go outside the lock
    const std::lock_guard lock(m_mutex);
    std::erase_if(m_processes, [&](const auto& one) {
        if (one->Connection().IsOpen()) return false;
        ended.push_back(one);
        return true;
    });
    m_processes.push_back(std::move(process));
}

} // namespace platform
