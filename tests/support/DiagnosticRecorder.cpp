#include "support/DiagnosticRecorder.h"

#include <mutex>

namespace test_support {

namespace {

struct RecordedFailures {
    std::mutex lock;
    std::vector<std::string> texts;
};

RecordedFailures& Recorded() {
    static RecordedFailures recorded;
    return recorded;
}

void Record(platform::Severity severity, const char*, unsigned, const CString& strText) {
    if (severity != platform::Severity::failure) return;
    const std::lock_guard guard(Recorded().lock);
    Recorded().texts.emplace_back(strText.View());
}

} // namespace

DiagnosticRecorder::DiagnosticRecorder() : m_before(platform::SetDiagnosticSink(Record)) {
    const std::lock_guard guard(Recorded().lock);
    Recorded().texts.clear();
}

DiagnosticRecorder::~DiagnosticRecorder() {
    platform::SetDiagnosticSink(m_before);
}

std::vector<std::string> DiagnosticRecorder::Failures() const {
    const std::lock_guard guard(Recorded().lock);
    return Recorded().texts;
}

} // namespace test_support
