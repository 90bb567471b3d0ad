// Standard output for results, standard error for everything else.
#pragma once

#include <chrono>
#include <cstdint>
#include <string>
#include <string_view>

namespace zrhttp {

bool IsTerminal(int descriptor);

// One message line on standard error, "zrhttp: text", control characters made visible.
void PrintError(std::string_view utf8);
// The same without the tool's name.
void PrintNote(std::string_view utf8);

// Writes exactly these bytes to standard output. Throws SystemError when they cannot be written.
void WriteOutput(std::string_view bytes);
// Writes a page to standard output: exactly its bytes or, on a terminal, as text with control
// characters made visible.
void WritePage(std::string_view bytes);
// Writes a text to standard output in the terminal's encoding; on a terminal, control characters
// are made visible.
void WriteText(std::string_view utf8);

// A line on standard error that is kept up to date while a page loads; on a terminal only.
class Progress {
public:
    Progress();
    ~Progress(); // removes the line
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    void Update(std::uint64_t bytes);

private:
    const bool m_isShown;
    bool m_hasLine = false;
    std::chrono::steady_clock::time_point m_begin;
};

} // namespace zrhttp
