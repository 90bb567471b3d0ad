#include "internet/InternetSession.h"

#include <algorithm>

#include "internet/CurlGlobal.h"

namespace platform {
namespace {

// A line end would begin another header field.
std::string WithoutControls(std::string text) {
    std::erase_if(text, [](unsigned char ch) { return ch < 0x20 || ch == 0x7F; });
    return text;
}

} // namespace

InternetSession::InternetSession(std::string agent) : m_agent(WithoutControls(std::move(agent))) {
    EnsureCurlIsReady();
    m_share.reset(curl_share_init());
    curl_share_setopt(m_share.get(), CURLSHOPT_LOCKFUNC, &InternetSession::Lock);
    curl_share_setopt(m_share.get(), CURLSHOPT_UNLOCKFUNC, &InternetSession::Unlock);
    curl_share_setopt(m_share.get(), CURLSHOPT_USERDATA, &m_shareLocks);
    curl_share_setopt(m_share.get(), CURLSHOPT_SHARE, CURL_LOCK_DATA_COOKIE);
}

void InternetSession::Lock(CURL*, curl_lock_data data, curl_lock_access, void* locks) {
    static_cast<Locks*>(locks)->at(data).lock();
}

void InternetSession::Unlock(CURL*, curl_lock_data data, void* locks) {
    static_cast<Locks*>(locks)->at(data).unlock();
}

std::unique_ptr<CurlChannel> InternetSession::TakeChannel() {
    const std::lock_guard lock(m_mutex);
    if (m_idleChannels.empty()) return std::make_unique<CurlChannel>();
    auto channel = std::move(m_idleChannels.back());
    m_idleChannels.pop_back();
    return channel;
}

void InternetSession::ReturnChannel(std::unique_ptr<CurlChannel> channel) {
    const std::lock_guard lock(m_mutex);
    m_idleChannels.push_back(std::move(channel));
}

} // namespace platform
