#include "window/display/DisplayThread.h"

#include <chrono>
#include <csignal>

#include <poll.h>

#include "window/display/DisplayWindows.h"

namespace platform {
namespace {

constexpr std::chrono::seconds kPatienceAtTheEnd{1};

void RunAll(std::vector<DisplayCommand>& commands, DisplayWindows& windows) {
    for (const DisplayCommand& command : commands)
        command(windows);
    commands.clear();
}

} // namespace

void BlockSignals() {
    sigset_t all;
    sigfillset(&all);
    pthread_sigmask(SIG_SETMASK, &all, nullptr);
}

DisplayThread::DisplayThread(std::unique_ptr<XConnection> connection)
    : m_connection(std::move(connection)), m_thread([this] { Run(); }) {}

void DisplayThread::End() {
    const std::lock_guard lock(m_endMutex);
    if (!m_thread.joinable()) return;
    m_commands->Close();
    if (m_ending.get_future().wait_for(kPatienceAtTheEnd) != std::future_status::ready)
        m_connection->Break();
    m_thread.join();
}

void DisplayThread::Run() {
    BlockSignals();
    DisplayWindows windows(*m_connection, m_commands);
    Serve(windows);
    m_isBroken = m_connection->IsBroken();
    m_commands->Close();
    if (std::vector<DisplayCommand> last; m_commands->Take(last)) RunAll(last, windows);
    windows.Leave(m_isBroken);
    m_ending.set_value();
}

void DisplayThread::Serve(DisplayWindows& windows) {
    std::vector<DisplayCommand> commands;
    while (!m_connection->IsBroken() && m_commands->Take(commands)) {
        RunAll(commands, windows);
        while (const auto event = m_connection->NextEvent())
            windows.Handle(*event);
        if (!m_connection->IsBroken()) WaitForNews();
    }
}

void DisplayThread::WaitForNews() {
    pollfd sources[] = {{m_connection->Descriptor(), POLLIN, 0},
                        {m_commands->Descriptor(), POLLIN, 0}};
    poll(sources, std::size(sources), -1);
}

} // namespace platform
