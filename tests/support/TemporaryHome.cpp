#include "support/TemporaryHome.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>

#include <gtest/gtest.h>

namespace test_support {
namespace {

std::string MakeDirectory() {
    std::string name = std::filesystem::temp_directory_path() / "zrhttp-test-XXXXXX";
    if (!::mkdtemp(name.data())) throw std::runtime_error("no temporary directory: " + name);
    return name;
}

} // namespace

TemporaryHome::TemporaryHome() : m_root(MakeDirectory()) {
    m_variable.emplace("ZRHTTP_HOME", m_root.c_str());
}

TemporaryHome::~TemporaryHome() {
    if (!Remove()) ADD_FAILURE() << "temporary home left behind: " << m_root;
}

std::string TemporaryHome::Path(std::string_view relative) const {
    return relative.empty() ? m_root : m_root + "/" + std::string(relative);
}

void TemporaryHome::WriteFile(std::string_view relative, std::string_view content) const {
    const std::filesystem::path path = Path(relative);
    std::filesystem::create_directories(path.parent_path());
    std::ofstream file(path, std::ios::binary | std::ios::trunc);
    if (!file.write(content.data(), static_cast<std::streamsize>(content.size())).flush())
        throw std::runtime_error("cannot write " + path.string());
}

std::optional<std::string> TemporaryHome::ReadFile(std::string_view relative) const {
    std::ifstream file(Path(relative), std::ios::binary);
    if (!file) return std::nullopt;
    return std::string(std::istreambuf_iterator<char>(file), {});
}

bool TemporaryHome::Remove() {
    if (m_root.empty()) return true;
    m_variable.reset();
    std::error_code error;
    std::filesystem::remove_all(m_root, error);
    if (std::filesystem::exists(m_root)) return false;
    m_root.clear();
    return true;
}

} // namespace test_support
