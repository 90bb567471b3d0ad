#include "browser/chromium/DevToolsPipe.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <thread>
#include <vector>

#include <fcntl.h>
#include <platform/Diagnostics.h>
#include <poll.h>
#include <sys/eventfd.h>

namespace platform {
namespace {

using namespace std::chrono_literals;

// A page of 256 MB travels as 342 MB of base64.
constexpr std::size_t kMaxMessageBytes = std::size_t{512} * 1024 * 1024;
// What may wait for the owner before the browser has to.
constexpr std::size_t kMaxWaitingBytes = std::size_t{64} * 1024 * 1024;
constexpr std::size_t kMaxErrorText = 4096;
constexpr std::size_t kChunkBytes = std::size_t{256} * 1024;
constexpr auto kClosePatience = 2s;
// The browser's last words may come behind the end of its pipe.
constexpr std::chrono::milliseconds kLastWordsPause = 200ms;

void MakeNonBlocking(const OwnedDescriptor& descriptor) {
    if (descriptor.IsOpen()) fcntl(descriptor.Get(), F_SETFL, O_NONBLOCK);
}

// A browser that has gone is an error value, not a signal; and signals meant for the program go to
// its own threads.
void BlockSignals() {
    sigset_t all;
    sigfillset(&all);
    pthread_sigmask(SIG_SETMASK, &all, nullptr);
}

bool IsCallNumber(const nlohmann::json& id) {
    return id.is_number_integer() && id == nlohmann::json(id.get<int>());
}

bool IsTransient() {
    return errno == EAGAIN || errno == EINTR;
}

} // namespace

DevToolsPipe::DevToolsPipe(OwnedDescriptor toBrowser, OwnedDescriptor fromBrowser,
                           OwnedDescriptor errorOutput)
    : m_toBrowser(std::move(toBrowser)), m_fromBrowser(std::move(fromBrowser)),
      m_errorOutput(std::move(errorOutput)), m_wake(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)),
      m_reader(kMaxMessageBytes), m_chunk(kChunkBytes) {
    MakeNonBlocking(m_toBrowser);
    MakeNonBlocking(m_fromBrowser);
    MakeNonBlocking(m_errorOutput);
}

void DevToolsPipe::Start(std::shared_ptr<PipeFilter> filter, std::function<void()> announce,
                         std::function<void()> cleanUp) {
    m_filter = std::move(filter);
    m_announce = std::move(announce);
    std::thread([self = shared_from_this(), cleanUp = std::move(cleanUp)]() mutable {
        self->Run();
        self.reset();
        if (cleanUp) cleanUp();
    }).detach();
}

void DevToolsPipe::Write(std::string message, int call, std::optional<Time> deadline) {
    if (!m_isOpen) return PutTimeout(call);
    {
        const std::lock_guard lock(m_mutex);
        if (m_closeBy) return;
        message.push_back('\0');
        m_outgoing.push_back(std::move(message));
        if (deadline) m_deadlines[call] = *deadline;
    }
    Wake();
}

std::optional<PipeMessage> DevToolsPipe::Take() {
    std::optional<PipeMessage> message;
    bool isRelieved = false;
    {
        const std::lock_guard lock(m_mutex);
        // From here on news are announced anew: a handler may serve messages.
        m_isAnnounced = false;
        if (m_messages.empty()) return std::nullopt;
        const bool wasThrottled = m_messageBytes > kMaxWaitingBytes;
        message = std::move(m_messages.front());
        m_messages.pop_front();
        m_messageBytes -= message->bytes;
        isRelieved = wasThrottled && m_messageBytes <= kMaxWaitingBytes;
    }
    if (isRelieved) Wake();
    return message;
}

bool DevToolsPipe::Wait(std::chrono::milliseconds patience) {
    std::unique_lock lock(m_mutex);
    if (m_waiters++ == 0) Wake();
    m_arrived.wait_for(lock, patience, [this] { return !m_messages.empty(); });
    // The end is known before its message comes: nobody is to miss that in between.
    if (!m_isOpen) m_arrived.wait(lock, [this] { return !m_messages.empty() || m_hasEnded; });
    --m_waiters;
    return !m_messages.empty();
}

void DevToolsPipe::Close() {
    {
        const std::lock_guard lock(m_mutex);
        if (m_closeBy) return;
        m_closeBy = std::chrono::steady_clock::now() + kClosePatience;
        m_messages.clear();
        m_messageBytes = 0;
    }
    Wake();
}

std::string DevToolsPipe::ErrorOutput() const {
    const std::lock_guard lock(m_mutex);
    return m_errorText;
}

void DevToolsPipe::Wake() const {
    const std::uint64_t one = 1;
    static_cast<void>(!write(m_wake.Get(), &one, sizeof one));
}

bool DevToolsPipe::IsThrottled() const {
    return m_messageBytes > kMaxWaitingBytes && m_waiters == 0;
}

void DevToolsPipe::Run() {
    BlockSignals();
    while (Turn()) {
    }
    End();
}

// False when the conversation is over.
bool DevToolsPipe::Turn() {
    std::array<pollfd, 4> polled{{{m_wake.Get(), POLLIN, 0},
                                  {m_fromBrowser.Get(), POLLIN, 0},
                                  {m_toBrowser.Get(), 0, 0},
                                  {m_errorOutput.Get(), POLLIN, 0}}};
    {
        const std::lock_guard lock(m_mutex);
        if (m_closeBy && (m_outgoing.empty() || std::chrono::steady_clock::now() >= *m_closeBy))
            return false;
        if (IsThrottled()) polled[1].fd = -1;
        // Not watched without need: a browser that no longer reads would be news all the time.
        if (!m_outgoing.empty())
            polled[2].events = POLLOUT;
        else
            polled[2].fd = -1;
    }
    if (poll(polled.data(), polled.size(), PollTimeout()) < 0 && errno != EINTR) return false;
    if (polled[0].revents) {
        std::uint64_t count = 0;
        static_cast<void>(!read(m_wake.Get(), &count, sizeof count));
    }
    if (polled[3].revents) ReadErrorOutput();
    if (polled[1].revents && !ReadMessages()) return false;
    if (polled[2].revents && !WriteMessages()) return false;
    ReportTimeouts();
    ServeFilter();
    return true;
}

void DevToolsPipe::ServeFilter() {
    if (m_filter && m_filter->NextTime() <= std::chrono::steady_clock::now()) m_filter->OnTime();
}

int DevToolsPipe::PollTimeout() {
    Time next = m_filter ? m_filter->NextTime() : Time::max();
    const std::lock_guard lock(m_mutex);
    if (m_closeBy) next = std::min(next, *m_closeBy);
    for (const auto& [call, deadline] : m_deadlines)
        next = std::min(next, deadline);
    if (next == Time::max()) return -1;
    const auto left =
        std::chrono::ceil<std::chrono::milliseconds>(next - std::chrono::steady_clock::now());
    return static_cast<int>(std::max<std::int64_t>(left.count(), 0));
}

bool DevToolsPipe::ReadMessages() {
    const ssize_t count = read(m_fromBrowser.Get(), m_chunk.data(), m_chunk.size());
    if (count < 0) return IsTransient();
    if (count == 0) return false;
    bool isInOrder = true;
    const bool isShortEnough =
        m_reader.Feed({m_chunk.data(), static_cast<std::size_t>(count)},
                      [&](std::string_view text) { isInOrder = isInOrder && TakeMessage(text); });
    if (isInOrder && isShortEnough) return true;
    ReportDiagnostic(Severity::failure, isInOrder
                                            ? "the browser's message is longer than any can be"
                                            : "the browser sends what is no DevTools message");
    return false;
}

bool DevToolsPipe::TakeMessage(std::string_view text) {
    PipeMessage message;
    message.value = nlohmann::json::parse(text, nullptr, false);
    message.bytes = text.size();
    if (!message.value.is_object()) return false;
    const auto id = message.value.find("id");
    const bool isReply = id != message.value.end() && IsCallNumber(*id);
    const auto method = message.value.find("method");
    const bool isEvent = id == message.value.end() && method != message.value.end();
    if (!isReply && !(isEvent && method->is_string())) return false;
    if (m_filter && m_filter->Take(message.value)) return true;
    if (isReply) {
        const std::lock_guard lock(m_mutex);
        m_deadlines.erase(id->get<int>());
    }
    Put(std::move(message));
    return true;
}

void DevToolsPipe::ReadErrorOutput() {
    std::array<char, 4096> chunk;
    const ssize_t count = read(m_errorOutput.Get(), chunk.data(), chunk.size());
    if (count < 0 && IsTransient()) return;
    if (count <= 0) {
        m_errorOutput.Close();
        return;
    }
    const std::lock_guard lock(m_mutex);
    m_errorText.append(chunk.data(), static_cast<std::size_t>(count));
    if (m_errorText.size() > kMaxErrorText)
        m_errorText.erase(0, m_errorText.size() - kMaxErrorText);
}

// The message being written stays in place; the lock is not held meanwhile.
bool DevToolsPipe::WriteMessages() {
    for (;;) {
        const std::string* message = nullptr;
        {
            const std::lock_guard lock(m_mutex);
            if (m_outgoing.empty()) return true;
            message = &m_outgoing.front();
        }
        const ssize_t count =
            write(m_toBrowser.Get(), message->data() + m_written, message->size() - m_written);
        if (count < 0) return IsTransient();
        m_written += static_cast<std::size_t>(count);
        if (m_written < message->size()) continue;
        m_written = 0;
        const std::lock_guard lock(m_mutex);
        m_outgoing.pop_front();
    }
}

void DevToolsPipe::ReportTimeouts() {
    std::vector<int> late;
    {
        const std::lock_guard lock(m_mutex);
        const Time now = std::chrono::steady_clock::now();
        std::erase_if(m_deadlines, [&](const auto& entry) {
            if (entry.second > now) return false;
            late.push_back(entry.first);
            return true;
        });
    }
    for (const int call : late)
        PutTimeout(call);
}

void DevToolsPipe::PutTimeout(int call) {
    PipeMessage message;
    message.kind = PipeMessage::Kind::timeout;
    message.call = call;
    Put(std::move(message));
}

void DevToolsPipe::Put(PipeMessage message) {
    {
        const std::lock_guard lock(m_mutex);
        if (m_closeBy) return;
        m_messageBytes += message.bytes;
        m_messages.push_back(std::move(message));
        m_arrived.notify_all();
        if (m_isAnnounced) return;
        m_isAnnounced = true;
    }
    m_announce();
}

// Until there are no more for a moment; what the browser has started may never stop.
void DevToolsPipe::ReadLastWords() {
    const auto end = std::chrono::steady_clock::now() + 5 * kLastWordsPause;
    pollfd polled{m_errorOutput.Get(), POLLIN, 0};
    while (m_errorOutput.IsOpen() && std::chrono::steady_clock::now() < end &&
           poll(&polled, 1, static_cast<int>(kLastWordsPause.count())) > 0)
        ReadErrorOutput();
}

void DevToolsPipe::End() {
    m_isOpen = false;
    m_toBrowser.Close();
    m_fromBrowser.Close();
    ReadLastWords();
    m_errorOutput.Close();
    PipeMessage message;
    message.kind = PipeMessage::Kind::end;
    Put(std::move(message));
    const std::lock_guard lock(m_mutex);
    m_hasEnded = true;
    m_arrived.notify_all();
}

} // namespace platform
