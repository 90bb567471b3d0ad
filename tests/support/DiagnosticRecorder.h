// Keeps what the platform reports while it lives, instead of the sink before it.
#pragma once

#include <mutex>
#include <string>
#include <vector>

#include <platform/Diagnostics.h>

namespace test_support {

// One at a time. Any thread may report.
class DiagnosticRecorder {
public:
    DiagnosticRecorder() : m_before(platform::SetDiagnosticSink(Record)) { s_failures.clear(); }
    ~DiagnosticRecorder() { platform::SetDiagnosticSink(m_before); }
    DiagnosticRecorder(const DiagnosticRecorder&) = delete;
    DiagnosticRecorder& operator=(const DiagnosticRecorder&) = delete;

    // The texts of severity failure, oldest first.
    std::vector<std::string> Failures() const {
        const std::lock_guard guard(s_lock);
        return s_failures;
    }

private:
    static void Record(platform::Severity severity, const char*, unsigned, const CString& strText) {
        const std::lock_guard guard(s_lock);
        if (severity == platform::Severity::failure) s_failures.emplace_back(strText.View());
    }

    static inline std::mutex s_lock;
    static inline std::vector<std::string> s_failures;
    platform::DiagnosticSink m_before;
};

} // namespace test_support
