// What the pages of a browser have under way.
#pragma once

#include <map>
#include <set>
#include <string>

#include "browser/chromium/DevToolsValues.h"

namespace platform {

// Told of every event, it knows the requests that have begun and not ended. Not thread-safe.
class NetworkActivity {
public:
    void Note(const Json& event);

    bool IsPage(const std::string& frame) const;
    // Nothing is under way but the requests of that page (none: empty) and those named.
    bool IsQuietBeside(const std::string& page, const std::set<std::string>& requests) const;

private:
    struct Session {
        std::string page; // its target, and so the id of its top frame
        std::set<std::string> requests;
    };
    void OnAttached(const std::string& parent, const Json& params);
    void OnNavigated(Session& session, const Json& params);

    std::map<std::string, Session> m_sessions;
};

} // namespace platform
