// Files that appear under their name only when they are complete.
#pragma once

#include <string>
#include <string_view>

namespace zrhttp {

// Writes to a temporary file beside the target; Commit gives it the target's name. Without Commit
// nothing is left behind and an existing target keeps its content; a new content keeps the
// target's permissions. A target that is no regular file (a device, a pipe) is written directly.
// All operations throw SystemError.
class OutputFile {
public:
    explicit OutputFile(const std::string& path);
    ~OutputFile();
    OutputFile(const OutputFile&) = delete;
    OutputFile& operator=(const OutputFile&) = delete;

    void Write(std::string_view bytes);
    void Commit();

    // Tells before any request is made whether the file can be written.
    static void CheckWritable(const std::string& path) { const OutputFile attempt(path); }

private:
    void OpenTemporary();
    [[noreturn]] void Fail(int error) const;

    std::string m_path;   // as given, for messages
    std::string m_target; // with links followed
    std::string m_temporary;
    bool m_isSpecial = false; // written directly
    int m_descriptor = -1;
};

} // namespace zrhttp
