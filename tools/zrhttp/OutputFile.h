// Files that the tool writes.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include <platform/FileReplacement.h>

namespace zrhttp {

// What FileReplacement promises, for files that others may read; all operations throw SystemError.
class OutputFile {
public:
    explicit OutputFile(const std::string& path);

    void Write(std::string_view bytes);
    void Commit();
    std::string WorkingName() const { return m_file.WorkingName(); }
    std::uint64_t Length() const { return m_file.Length(); }

    // Tells before any request is made whether the file can be written.
    static void CheckWritable(const std::string& path) { const OutputFile attempt(path); }

private:
    void Check(int error) const;

    std::string m_path; // as given, for messages
    platform::FileReplacement m_file;
};

} // namespace zrhttp
