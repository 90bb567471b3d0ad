// The names and passwords that a session has been given.
#pragma once

#include <map>
#include <mutex>
#include <optional>
#include <string>

namespace platform {

// In UTF-8.
struct UserCredentials {
    std::string name;
    std::string password;
};

// Each pair is for one protection space: the origin of a server ("https://host:443") or a proxy.
// Any thread.
class CredentialStore {
public:
    void Keep(const std::string& space, UserCredentials credentials) {
        const std::lock_guard lock(m_mutex);
        m_credentials[space] = std::move(credentials);
    }
    std::optional<UserCredentials> Find(const std::string& space) const {
        const std::lock_guard lock(m_mutex);
        const auto found = m_credentials.find(space);
        if (found == m_credentials.end()) return std::nullopt;
        return found->second;
    }

private:
    mutable std::mutex m_mutex;
    std::map<std::string, UserCredentials> m_credentials;
};

} // namespace platform
