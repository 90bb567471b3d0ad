// The program's side of its supervisor: gives the browser time to end, and cleans up when the
// supervisor cannot.
#pragma once

#include <mutex>
#include <string>

#include "browser/chromium/ProfileDirectory.h"

namespace platform {

// Any thread.
class Supervision {
public:
    // `life`: the supervisor alone holds the pipe's other end. `hold`: the browser is killed when
    // it closes.
    Supervision(LockedProfile profile, OwnedDescriptor life, OwnedDescriptor hold);

    const std::string& ProfileDirectory() const { return m_profile.path; }
    // If the supervisor has gone, ends the browser and removes the profile.
    void EndIfAlone();
    // Returns when the browser and the profile have gone. A browser that takes longer than two
    // seconds is killed, and a supervisor that does nothing is done without.
    void SeeToTheEnd();

private:
    void End();

    std::mutex m_mutex;
    LockedProfile m_profile; // the path never changes
    OwnedDescriptor m_life;
    OwnedDescriptor m_hold;
};

} // namespace platform
