#include "internet/CurlChannel.h"

#include "internet/CurlGlobal.h"
#include "internet/SigpipeGuard.h"

namespace platform {

CurlChannel::CurlChannel() {
    EnsureCurlIsReady();
    m_multi.reset(curl_multi_init());
    m_easy.reset(curl_easy_init());
}

CurlChannel::~CurlChannel() {
    const SigpipeGuard guard;
    Stop();
    m_easy.reset();
    m_multi.reset();
}

void CurlChannel::Start() {
    curl_multi_add_handle(m_multi.get(), m_easy.get());
    m_isStarted = true;
}

std::optional<CURLcode> CurlChannel::Work() {
    const SigpipeGuard guard;
    int running = 0;
    curl_multi_perform(m_multi.get(), &running);
    if (running > 0) return std::nullopt;
    int left = 0;
    while (const CURLMsg* message = curl_multi_info_read(m_multi.get(), &left))
        if (message->msg == CURLMSG_DONE) return message->data.result;
    return std::nullopt;
}

void CurlChannel::Wait(std::chrono::milliseconds time) {
    curl_multi_poll(m_multi.get(), nullptr, 0, static_cast<int>(time.count()), nullptr);
}

void CurlChannel::Resume() {
    const SigpipeGuard guard;
    curl_easy_pause(m_easy.get(), CURLPAUSE_CONT);
}

void CurlChannel::Stop() {
    if (!m_isStarted) return;
    const SigpipeGuard guard;
    curl_multi_remove_handle(m_multi.get(), m_easy.get());
    m_isStarted = false;
}

} // namespace platform
