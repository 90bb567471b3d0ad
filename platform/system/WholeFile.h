// Files read and replaced as a whole. Results are system error numbers (errno), 0 for success.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace platform {

// Reads a regular file of at most `limit` bytes; EFBIG for a longer one, EISDIR for anything that
// is no file. Never waits for a pipe's other end.
int ReadWholeFile(const std::string& name, std::size_t limit, std::string& content);

// Gives the file (where a symbolic link points to, if it is one) new content and mode 0600, on the
// disk when it returns. On failure the old file stands and nothing else is left.
int ReplaceWholeFile(const std::string& name, std::string_view content);

} // namespace platform
