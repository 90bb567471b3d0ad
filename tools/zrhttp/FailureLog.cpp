#include "zrhttp/FailureLog.h"

#include <filesystem>
#include <fstream>
#include <string_view>

#include <platform/UserPaths.h>

namespace zrhttp {
namespace {

constexpr std::string_view kError = "\terror\t";
constexpr std::string_view kLineEnd = "\\n"; // inside a text

std::uintmax_t SizeOf(const std::string& fileName) {
    std::error_code error;
    const auto size = std::filesystem::file_size(fileName, error);
    return error ? 0 : size;
}

// time TAB group TAB level TAB place TAB text
std::string_view TextOfFailure(std::string_view line) {
    const std::size_t level = line.find(kError);
    if (level == std::string_view::npos) return {};
    line.remove_prefix(level + kError.size());
    const std::size_t place = line.find('\t');
    return place == std::string_view::npos ? std::string_view() : line.substr(place + 1);
}

void AppendLines(std::vector<std::string>& lines, std::string_view text) {
    while (!text.empty()) {
        const std::size_t end = std::min(text.find(kLineEnd), text.size());
        if (end > 0) lines.emplace_back(text.substr(0, end));
        text.remove_prefix(std::min(end + kLineEnd.size(), text.size()));
    }
}

} // namespace

FailureLog::FailureLog()
    : m_fileName(std::string(platform::LogDirectory().View()) + "/zrhttpbase3.log"),
      m_begin(SizeOf(m_fileName)) {}

std::vector<std::string> FailureLog::NewLines() const {
    std::error_code error;
    if (!std::filesystem::is_regular_file(m_fileName, error)) return {}; // nobody may write there
    std::ifstream file(m_fileName, std::ios::binary);
    // A log that has become shorter has been begun anew.
    if (SizeOf(m_fileName) >= m_begin) file.seekg(static_cast<std::streamoff>(m_begin));
    std::vector<std::string> lines;
    for (std::string line; std::getline(file, line);)
        AppendLines(lines, TextOfFailure(line));
    return lines;
}

} // namespace zrhttp
