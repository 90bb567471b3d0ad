// An environment variable for the life of an object.
#pragma once

#include <cstdlib>
#include <optional>
#include <string>

namespace test_support {

// Sets the variable, or takes it away for a null value, and puts it back as it was at the end.
// Use it on one thread only.
class ScopedVariable {
public:
    ScopedVariable(const char* name, const char* value) : m_name(name) {
        if (const char* before = std::getenv(name)) m_before = before;
        Set(value);
    }
    ~ScopedVariable() { Set(m_before ? m_before->c_str() : nullptr); }
    ScopedVariable(const ScopedVariable&) = delete;
    ScopedVariable& operator=(const ScopedVariable&) = delete;

private:
    void Set(const char* value) {
        if (value)
            ::setenv(m_name.c_str(), value, 1);
        else
            ::unsetenv(m_name.c_str());
    }

    std::string m_name;
    std::optional<std::string> m_before;
};

} // namespace test_support
