// How far a download has come, on standard error.
#pragma once

#include <chrono>
#include <cstdint>
#include <mutex>
#include <optional>
#include <string>

namespace zrhttp {

// A line that is kept up to date on a terminal: a bar, bytes, rate and time left as far as they are
// known. Elsewhere one line for each 10 per cent.
class TransferProgress {
public:
    TransferProgress();
    ~TransferProgress(); // removes the line
    TransferProgress(const TransferProgress&) = delete;
    TransferProgress& operator=(const TransferProgress&) = delete;

    // Any thread. percent: nothing while the length is not known.
    void Update(std::uint64_t bytes, std::optional<int> percent);
    // Any thread. Removes the line; while the result lives, nothing is shown.
    std::unique_lock<std::mutex> Silence();

private:
    std::string LineOf(std::uint64_t bytes, std::optional<int> percent) const;

    void RemoveLine();

    const bool m_isTerminal;
    std::mutex m_mutex; // held by who writes to the terminal
    bool m_hasLine = false;
    int m_tenthsShown = 0;
    std::chrono::steady_clock::time_point m_begin;
};

// "512 B", "1.5 kB", "12.3 MB": powers of 1000.
std::string ByteCountText(double bytes);
// "0:07", "12:05", "1:00:00".
std::string DurationText(std::chrono::seconds duration);

} // namespace zrhttp
