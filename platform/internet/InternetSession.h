// What the requests of one session share: the agent's name, credentials, cookies and connections.
#pragma once

#include <array>
#include <atomic>
#include <chrono>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "internet/CredentialStore.h"
#include "internet/CurlChannel.h"
#include "internet/FurtherCertificates.h"

namespace platform {

// Any thread. Its requests keep it alive.
class InternetSession {
public:
    explicit InternetSession(std::string agent);
    InternetSession(const InternetSession&) = delete;
    InternetSession& operator=(const InternetSession&) = delete;

    const std::string& Agent() const { return m_agent; }
    const FurtherCertificates& Certificates() const { return m_certificates; }
    CredentialStore& Credentials() { return m_credentials; }
    CURLSH* Share() const { return m_share.get(); }

    // One that another request has used, with the connections that are still open, or a new one.
    std::unique_ptr<CurlChannel> TakeChannel();
    void ReturnChannel(std::unique_ptr<CurlChannel> channel);

    // How long a wait without a byte may take; 0: for ever.
    std::chrono::milliseconds ReceiveTimeout() const { return m_receiveTimeout; }
    void SetReceiveTimeout(std::chrono::milliseconds time) { m_receiveTimeout = time; }

    // Ends what waits in its requests.
    void Close() { m_isClosed = true; }
    bool IsClosed() const { return m_isClosed; }

private:
    using Locks = std::array<std::mutex, CURL_LOCK_DATA_LAST>;

    static void Lock(CURL* easy, curl_lock_data data, curl_lock_access access, void* locks);
    static void Unlock(CURL* easy, curl_lock_data data, void* locks);

    const std::string m_agent;
    const FurtherCertificates m_certificates = ReadFurtherCertificates();
    CredentialStore m_credentials;
    std::atomic<bool> m_isClosed{false};
    std::atomic<std::chrono::milliseconds> m_receiveTimeout{};
    Locks m_shareLocks;
    CurlShare m_share; // cookies
    std::mutex m_mutex;
    std::vector<std::unique_ptr<CurlChannel>> m_idleChannels; // they use the share
};

} // namespace platform
