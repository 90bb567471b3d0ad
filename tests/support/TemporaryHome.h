// A directory of the test's own in place of the user's files.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "support/ScopedVariable.h"

namespace test_support {

// While it lives, ZRHTTP_HOME names a new empty directory. Its end puts the variable back and
// removes the directory; what cannot be removed fails the test. Change it on one thread only.
class TemporaryHome {
public:
    TemporaryHome();
    ~TemporaryHome();
    TemporaryHome(const TemporaryHome&) = delete;
    TemporaryHome& operator=(const TemporaryHome&) = delete;

    // The absolute path of a name below the directory ("" for the directory itself).
    std::string Path(std::string_view relative = "") const;
    // Writes a whole file below the directory; makes the directories above it.
    void WriteFile(std::string_view relative, std::string_view content) const;
    // The whole file; nothing when it does not exist.
    std::optional<std::string> ReadFile(std::string_view relative) const;

    // Ends it before its destructor does; false when the directory could not be removed.
    bool Remove();

private:
    std::string m_root;
    std::optional<ScopedVariable> m_variable;
};

} // namespace test_support
