// What the library records about failures in this process.
#pragma once

#include <mutex>
#include <string>
#include <vector>

#include <platform/LogWatch.h>

namespace zrhttp {

// While it lives.
class FailureRecords {
public:
    // The texts so far, oldest first, a line of a text an element, each once; UTF-8. Any thread.
    std::vector<std::string> Lines() const;
    // The log holds them too.
    bool AreInLog() const;

private:
    void Take(const platform::WatchedRecord& record);

    mutable std::mutex m_lock;
    std::vector<std::string> m_lines;
    bool m_areInLog = false;
    const platform::LogWatch m_watch{[this](const auto& record) { Take(record); }};
};

} // namespace zrhttp
