#include "zrhttp/OutputFile.h"

#include <cstring>

#include "zrhttp/Errors.h"

namespace zrhttp {

OutputFile::OutputFile(const std::string& path) : m_path(path) {
    Check(m_file.Open(path, platform::FileReplacement::Access::shared));
}

void OutputFile::Write(std::string_view bytes) {
    Check(m_file.Write(bytes));
}

void OutputFile::Commit() {
    Check(m_file.Commit());
}

void OutputFile::Check(int error) const {
    if (error != 0) throw SystemError("cannot write '" + m_path + "': " + std::strerror(error));
}

} // namespace zrhttp
