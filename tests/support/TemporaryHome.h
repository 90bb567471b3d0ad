// A directory of the test's own in place of the user's files.
#pragma once

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>

#include <gtest/gtest.h>

#include "support/ScopedVariable.h"

namespace test_support {

// While it lives, ZRHTTP_HOME names a new empty directory. Its end puts the variable back and
// removes the directory; what cannot be removed fails the test. Change it on one thread only.
class TemporaryHome {
public:
    TemporaryHome() {
        if (!::mkdtemp(m_root.data())) throw std::runtime_error("no temporary directory");
        m_variable.emplace("ZRHTTP_HOME", m_root.c_str());
    }
    ~TemporaryHome() {
        if (!Remove()) ADD_FAILURE() << "temporary home left behind: " << m_root;
    }
    TemporaryHome(const TemporaryHome&) = delete;
    TemporaryHome& operator=(const TemporaryHome&) = delete;

    // The absolute path of a name below the directory ("" for the directory itself).
    std::string Path(std::string_view relative = "") const {
        return relative.empty() ? m_root : m_root + "/" + std::string(relative);
    }
    // Writes a whole file below the directory; makes the directories above it.
    void WriteFile(std::string_view relative, std::string_view content) const {
        const std::filesystem::path path = Path(relative);
        std::filesystem::create_directories(path.parent_path());
        std::ofstream file(path, std::ios::binary | std::ios::trunc);
        EXPECT_TRUE((file << content).flush()) << "cannot write " << path;
    }
    // The whole file; nothing when it does not exist.
    std::optional<std::string> ReadFile(std::string_view relative) const {
        std::ifstream file(Path(relative), std::ios::binary);
        if (!file) return std::nullopt;
        return std::string(std::istreambuf_iterator<char>(file), {});
    }
    // Ends it before its destructor does; false when the directory could not be removed.
    bool Remove() {
        m_variable.reset();
        std::error_code error;
        std::filesystem::remove_all(m_root, error);
        return !std::filesystem::exists(m_root);
    }

private:
    std::string m_root = std::filesystem::temp_directory_path() / "zrhttp-test-XXXXXX";
    std::optional<ScopedVariable> m_variable;
};

} // namespace test_support
