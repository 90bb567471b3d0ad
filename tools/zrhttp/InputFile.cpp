#include "zrhttp/InputFile.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>

#include "zrhttp/Errors.h"

namespace zrhttp {
namespace {

// A request body is one block of memory with a 32-bit length; this leaves room for a few copies.
constexpr std::size_t kLargestInput = std::size_t{512} << 20;

struct FileCloser {
    void operator()(std::FILE* file) const {
        if (file != stdin) std::fclose(file);
    }
};
using File = std::unique_ptr<std::FILE, FileCloser>;

[[noreturn]] void Fail(const std::string& path, const char* reason) {
    throw UsageError("cannot read '" + path + "': " + reason);
}

} // namespace

std::string ReadInput(const std::string& path) {
    const File file(path == "-" ? stdin : std::fopen(path.c_str(), "rbe"));
    if (!file) Fail(path, std::strerror(errno));
    std::string content;
    char block[65536];
    // The end is asked for once: a person at a terminal tells it by a key.
    while (!std::feof(file.get()) && !std::ferror(file.get())) {
        content.append(block, std::fread(block, 1, sizeof block, file.get()));
        if (content.size() > kLargestInput) Fail(path, "larger than 512 MiB");
    }
    if (std::ferror(file.get())) Fail(path, std::strerror(errno));
    return content;
}

} // namespace zrhttp
