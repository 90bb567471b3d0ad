#include "browser/builtin/NetworkThread.h"

#include <csignal>
#include <set>

#include "browser/builtin/FilePage.h"
#include "browser/builtin/Limits.h"
#include "browser/common/FileUrl.h"
#include "browser/common/PageUrl.h"
#include "internet/CurlGlobal.h"

namespace platform {
namespace {

// A write to a connection that the server has closed must not kill the process, and signals meant
// for the program go to its own threads.
void BlockSignals() {
    sigset_t all;
    sigfillset(&all);
    pthread_sigmask(SIG_SETMASK, &all, nullptr);
}

} // namespace

// Those of the calling thread's browsers. They end with their owner's thread at the latest: at the
// end of the process the TLS library is taken down while a browser may still be there.
class NetworkThread::RunningOnes {
public:
    static RunningOnes& OfThisThread() {
        static thread_local RunningOnes current;
        return current;
    }
    ~RunningOnes() {
        for (NetworkThread* one : m_all)
            one->End();
    }
    void Add(NetworkThread* one) { m_all.insert(one); }
    void Remove(NetworkThread* one) { m_all.erase(one); }

private:
    std::set<NetworkThread*> m_all;
};

NetworkThread::NetworkThread(std::shared_ptr<Inbox> inbox) : m_inbox(std::move(inbox)) {
    EnsureCurlIsReady();
    m_multi.reset(curl_multi_init());
    m_share.reset(curl_share_init());
    // One thread uses the share, so it needs no locks.
    curl_share_setopt(m_share.get(), CURLSHOPT_SHARE, CURL_LOCK_DATA_COOKIE);
    curl_share_setopt(m_share.get(), CURLSHOPT_SHARE, CURL_LOCK_DATA_SSL_SESSION);
    curl_multi_setopt(m_multi.get(), CURLMOPT_MAX_HOST_CONNECTIONS, kMaxConnectionsPerHost);
    m_settings = {m_share.get(), ReadFurtherCertificates()};
    m_thread = std::thread([this] { Run(); });
    RunningOnes::OfThisThread().Add(this);
}

NetworkThread::~NetworkThread() {
    if (!m_thread.joinable()) return; // the owner's thread is ending, too
    RunningOnes::OfThisThread().Remove(this);
    End();
}

void NetworkThread::End() {
    Send(EndCommand{});
    m_thread.join();
    for (auto& [id, transfer] : m_transfers)
        curl_multi_remove_handle(m_multi.get(), transfer->Easy());
    m_transfers.clear();
    m_idleHandles.clear();
    m_share.reset();
    m_multi.reset();
}

void NetworkThread::Start(FetchRequest request) {
    Send(std::move(request));
}
void NetworkThread::Cancel(FetchId id) {
    Send(CancelCommand{id});
}
void NetworkThread::StartTimer(FetchId id, std::chrono::seconds delay) {
    Send(TimerCommand{id, std::chrono::steady_clock::now() + delay});
}

void NetworkThread::Send(Command command) {
    {
        const std::lock_guard lock(m_mutex);
        m_commands.push_back(std::move(command));
    }
    if (m_multi) curl_multi_wakeup(m_multi.get());
}

void NetworkThread::Run() {
    BlockSignals();
    while (HandleCommands()) {
        int running = 0;
        curl_multi_perform(m_multi.get(), &running);
        CollectFinished();
        ServeTimers();
        m_inbox->Put(m_events);
        curl_multi_poll(m_multi.get(), nullptr, 0, WaitMilliseconds(), nullptr);
    }
}

bool NetworkThread::HandleCommands() {
    std::vector<Command> commands;
    {
        const std::lock_guard lock(m_mutex);
        commands.swap(m_commands);
    }
    for (Command& command : commands)
        if (!std::visit([this](auto& one) { return Handle(one); }, command)) return false;
    return true;
}

bool NetworkThread::Handle(FetchRequest& request) {
    if (!IsHttpUrl(request.url)) {
        FetchAtOnce(request);
        return true;
    }
    if (std::string reason = m_settings.ReasonAgainst(request.url); !reason.empty()) {
        m_events.push_back({request.id, FetchFailed{request.url, std::move(reason)}});
        return true;
    }
    CurlEasy easy;
    if (m_idleHandles.empty()) {
        easy.reset(curl_easy_init());
    } else {
        easy = std::move(m_idleHandles.back());
        m_idleHandles.pop_back();
    }
    const FetchId id = request.id;
    auto transfer =
        std::make_unique<Transfer>(std::move(request), std::move(easy), m_settings, m_events);
    curl_multi_add_handle(m_multi.get(), transfer->Easy());
    m_transfers.emplace(id, std::move(transfer));
    return true;
}

bool NetworkThread::Handle(const CancelCommand& command) {
    m_timers.erase(command.id);
    const auto found = m_transfers.find(command.id);
    if (found == m_transfers.end()) return true;
    curl_multi_remove_handle(m_multi.get(), found->second->Easy());
    Retire(command.id);
    return true;
}

bool NetworkThread::Handle(const TimerCommand& command) {
    m_timers[command.id] = command.due;
    return true;
}

bool NetworkThread::Handle(const EndCommand&) {
    return false;
}

// File pages and the empty page.
void NetworkThread::FetchAtOnce(const FetchRequest& request) {
    const auto report = [&](decltype(NetworkEvent::what) what) {
        m_events.push_back({request.id, std::move(what)});
    };
    HeadReceived head{request.url, {0, "text/html", false}};
    PageReceived page;
    if (SchemeOf(request.url) == "file") {
        std::string fileName;
        std::string error;
        if (!FileNameOfUrl(request.url, fileName, error) ||
            !ReadFilePage(fileName, *request.body, error)) {
            report(FetchFailed{request.url, error});
            return;
        }
        head.reply.type = TypeOfFile(fileName);
        if (IsHtmlType(head.reply.type))
            page.scan = ScanHtml(request.body->ViewByWriter(), request.url, page.problem);
    }
    report(std::move(head));
    report(std::move(page));
}

void NetworkThread::CollectFinished() {
    int left = 0;
    while (const CURLMsg* message = curl_multi_info_read(m_multi.get(), &left)) {
        if (message->msg != CURLMSG_DONE) continue;
        Transfer* transfer = nullptr;
        const CURLcode code = message->data.result;
        curl_easy_getinfo(message->easy_handle, CURLINFO_PRIVATE, &transfer);
        Finish(*transfer, code);
    }
}

void NetworkThread::Finish(Transfer& transfer, CURLcode code) {
    curl_multi_remove_handle(m_multi.get(), transfer.Easy());
    if (transfer.Finish(code))
        curl_multi_add_handle(m_multi.get(), transfer.Easy());
    else
        Retire(transfer.Id());
}

void NetworkThread::Retire(FetchId id) {
    const auto found = m_transfers.find(id);
    m_idleHandles.push_back(found->second->ReleaseEasy());
    ResetEasy(m_idleHandles.back().get()); // forgets where the transfer kept its data
    m_transfers.erase(found);
}

void NetworkThread::ServeTimers() {
    const Time now = std::chrono::steady_clock::now();
    std::vector<Transfer*> impatient;
    for (const auto& [id, transfer] : m_transfers)
        if (const auto end = transfer->PatienceEnd(); end && *end <= now)
            impatient.push_back(transfer.get());
    for (Transfer* transfer : impatient)
        Finish(*transfer, CURLE_OK);
    std::erase_if(m_timers, [&](const auto& timer) {
        const bool isDue = timer.second <= now;
        if (isDue) m_events.push_back({timer.first, TimerElapsed{}});
        return isDue;
    });
}

int NetworkThread::WaitMilliseconds() const {
    using std::chrono::milliseconds;
    // The transfer library cuts this to what its own timers need.
    const Time now = std::chrono::steady_clock::now();
    Time next = now + std::chrono::hours(1);
    for (const auto& timer : m_timers)
        next = std::min(next, timer.second);
    for (const auto& [id, transfer] : m_transfers)
        if (const auto end = transfer->PatienceEnd()) next = std::min(next, *end);
    const auto wait = std::chrono::ceil<milliseconds>(next - now).count();
    return wait > 0 ? static_cast<int>(wait) : 0;
}

} // namespace platform
