#include "system/FilePath.h"

#include <algorithm>
#include <filesystem>

namespace platform {
namespace {

constexpr int kLinks = 40; // that are followed

} // namespace

std::string BehindLinks(const std::string& name) {
    namespace fs = std::filesystem;
    std::error_code ignored;
    fs::path target = name;
    for (int links = 0; links < kLinks && !fs::exists(target, ignored); ++links) {
        const fs::path next = fs::read_symlink(target, ignored);
        if (next.empty()) break;
        target = target.parent_path() / next;
    }
    const fs::path real = fs::weakly_canonical(target, ignored);
    return real.empty() ? target.string() : real.string();
}

std::string DirectoryOf(const std::string& name) {
    const std::size_t slash = name.rfind('/');
    return slash == std::string::npos ? "." : name.substr(0, std::max<std::size_t>(slash, 1));
}

} // namespace platform
