// What the library writes into its log about failures.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace zrhttp {

// From here on.
class FailureLog {
public:
    FailureLog();
    // The texts of the failures since then, oldest first, a line of a text an element; UTF-8.
    std::vector<std::string> NewLines() const;
    const std::string& FileName() const { return m_fileName; }

private:
    std::string m_fileName;
    std::uintmax_t m_begin = 0;
};

} // namespace zrhttp
