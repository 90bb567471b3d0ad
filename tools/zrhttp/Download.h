// A file's way from a server to the disk, in the tool.
#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace zrhttp {

enum class DownloadEnd { complete, failed, stopped };

struct DownloadOptions {
    std::string url;
    std::string file;
    std::uint32_t timeout = 60000; // milliseconds without progress; 0: none
    bool keepErrorPage = false;
    bool background = false; // on the library's worker thread, followed by its messages
    bool json = false;
};

// Why there is no file.
struct DownloadFailure {
    std::string cause;                // what the reply lacks; empty: the records tell
    std::string reason;               // the cause, or why the transfer failed; may be empty
    std::vector<std::string> records; // of the library; lines in UTF-8
    bool areRecordsInLog = false;
    bool isErrorPage = false;  // which is not wanted
    bool isConnection = false; // there is none to the server
};

struct DownloadResult {
    DownloadEnd end = DownloadEnd::failed;
    std::optional<int> httpStatus; // of the last reply
    std::uint64_t length = 0;      // bytes that have arrived
    std::chrono::milliseconds elapsed{};
    DownloadFailure failure;
};

// Shows the progress. The file has its name when it is complete, and is not there otherwise; one
// that was there before stays then. Throws UsageError for a URL or file name that cannot be,
// SystemError for a file that cannot be written. An interrupt stops it.
DownloadResult Download(const DownloadOptions& options);

} // namespace zrhttp
