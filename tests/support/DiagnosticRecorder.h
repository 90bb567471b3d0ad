// Keeps what the platform reports while it lives, instead of the sink before it.
#pragma once

#include <string>
#include <vector>

#include <platform/Diagnostics.h>

namespace test_support {

// One at a time. Any thread may report.
class DiagnosticRecorder {
public:
    DiagnosticRecorder();
    ~DiagnosticRecorder();
    DiagnosticRecorder(const DiagnosticRecorder&) = delete;
    DiagnosticRecorder& operator=(const DiagnosticRecorder&) = delete;

    // The texts of severity failure, oldest first.
    std::vector<std::string> Failures() const;

private:
    platform::DiagnosticSink m_before;
};

} // namespace test_support
