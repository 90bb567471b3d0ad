#include <platform/Diagnostics.h>

#include <atomic>

namespace platform {
namespace {

std::atomic<DiagnosticSink> installedSink{nullptr};

} // namespace

DiagnosticSink SetDiagnosticSink(DiagnosticSink sink) {
    return installedSink.exchange(sink, std::memory_order_acq_rel);
}

void ReportDiagnostic(Severity severity, const CString& strText, const char* pszSource,
                      unsigned line) {
    if (const DiagnosticSink sink = installedSink.load(std::memory_order_acquire))
        sink(severity, pszSource, line, strText);
}

} // namespace platform
