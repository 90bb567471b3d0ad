#include "zrhttp/FailureRecords.h"

#include <algorithm>
#include <string_view>

namespace zrhttp {
namespace {

constexpr std::string_view kLineEnd = "\\n"; // inside a text

} // namespace

std::vector<std::string> FailureRecords::Lines() const {
    const std::lock_guard guard(m_lock);
    return m_lines;
}

bool FailureRecords::AreInLog() const {
    const std::lock_guard guard(m_lock);
    return m_areInLog;
}

void FailureRecords::Take(const platform::WatchedRecord& record) {
    if (record.severity != platform::Severity::failure) return;
    const std::lock_guard guard(m_lock);
    m_areInLog = record.isWritten;
    std::string_view text = record.text;
    while (!text.empty()) {
        const std::size_t end = std::min(text.find(kLineEnd), text.size());
        const std::string line(text.substr(0, end));
        if (!line.empty() && std::find(m_lines.begin(), m_lines.end(), line) == m_lines.end())
            m_lines.push_back(line);
        text.remove_prefix(std::min(end + kLineEnd.size(), text.size()));
    }
}

} // namespace zrhttp
