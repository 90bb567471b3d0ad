// A file's way from a server to the disk, in the tool.
#pragma once

#include <chrono>
#include <cstdint>
#include <string>

namespace zrhttp {

enum class DownloadEnd { complete, failed, stopped };

struct DownloadOptions {
    std::string url;
    std::string file;
    bool background = false; // on the library's worker thread, followed by its messages
    bool json = false;
};

struct DownloadResult {
    DownloadEnd end = DownloadEnd::failed;
    std::uint64_t length = 0; // bytes that have arrived
    std::chrono::milliseconds elapsed{};
};

// Shows the progress. The file has its name when it is complete, and is not there otherwise; one
// that was there before stays then. Throws UsageError for a URL or file name that cannot be,
// SystemError for a file that cannot be written. Ctrl-C stops it.
DownloadResult Download(const DownloadOptions& options);

} // namespace zrhttp
