#include "zrhttp/TransferProgress.h"

#include <cstdio>
#include <iterator>
#include <utility>

#include <unistd.h>

#include "zrhttp/Terminal.h"

namespace zrhttp {
namespace {

constexpr int kBarWidth = 24;

std::string BarText(int percent) {
    const int filled = kBarWidth * percent / 100;
    std::string bar(static_cast<std::size_t>(filled), '#');
    bar.resize(kBarWidth, '.');
    char number[16];
    std::snprintf(number, sizeof number, "%3d %%", percent);
    return "[" + bar + "] " + number + "  ";
}

} // namespace

std::string ByteCountText(double bytes) {
    constexpr const char* kUnits[] = {"B", "kB", "MB", "GB", "TB"};
    std::size_t unit = 0;
    while (bytes >= 1000 && unit + 1 < std::size(kUnits)) {
        bytes /= 1000;
        ++unit;
    }
    char text[32];
    std::snprintf(text, sizeof text, unit == 0 ? "%.0f %s" : "%.1f %s", bytes, kUnits[unit]);
    return text;
}

std::string DurationText(std::chrono::seconds duration) {
    const long long seconds = duration.count();
    char text[32];
    if (seconds < 3600)
        std::snprintf(text, sizeof text, "%lld:%02lld", seconds / 60, seconds % 60);
    else
        std::snprintf(text, sizeof text, "%lld:%02lld:%02lld", seconds / 3600, seconds / 60 % 60,
                      seconds % 60);
    return text;
}

TransferProgress::TransferProgress()
    : m_isTerminal(IsTerminal(STDERR_FILENO)), m_begin(std::chrono::steady_clock::now()) {}

TransferProgress::~TransferProgress() {
    RemoveLine();
}

void TransferProgress::RemoveLine() {
    if (std::exchange(m_hasLine, false)) std::fputs("\r\033[K", stderr);
}

std::unique_lock<std::mutex> TransferProgress::Silence() {
    std::unique_lock lock(m_mutex);
    RemoveLine();
    return lock;
}

std::string TransferProgress::LineOf(std::uint64_t bytes, std::optional<int> percent) const {
    const std::chrono::duration<double> elapsed = std::chrono::steady_clock::now() - m_begin;
    std::string line = percent ? BarText(*percent) : std::string();
    line += ByteCountText(static_cast<double>(bytes));
    if (elapsed.count() > 0)
        line += "  " + ByteCountText(static_cast<double>(bytes) / elapsed.count()) + "/s";
    if (percent && *percent > 0) {
        const auto left = elapsed * (100 - *percent) / *percent;
        line +=
            "  " + DurationText(std::chrono::duration_cast<std::chrono::seconds>(left)) + " left";
    }
    return line;
}

void TransferProgress::Update(std::uint64_t bytes, std::optional<int> percent) {
    const std::unique_lock lock(m_mutex, std::try_to_lock);
    if (!lock) return;
    if (m_isTerminal) {
        std::fprintf(stderr, "\r\033[K%s", LineOf(bytes, percent).c_str());
        std::fflush(stderr);
        m_hasLine = true;
        return;
    }
    if (!percent || *percent / 10 <= m_tenthsShown) return;
    m_tenthsShown = *percent / 10;
    PrintNote(std::to_string(m_tenthsShown * 10) + " %");
}

} // namespace zrhttp
