// What the platform has to report (a store renamed aside, a navigation that failed) goes to one
// sink; the library's log installs itself there when it is loaded. Texts must hold no secrets:
// URLs pass through UrlForLog first (Secrets.h).
#pragma once

#include "Export.h"
#include "String.h"

ZRHB_EXPORT_BEGIN

namespace platform {

enum class Severity { failure = 0, trace = 2 };

using DiagnosticSink = void (*)(Severity severity, const char* pszSource, unsigned line,
                                const CString& strText);

// Returns the sink before. A null sink drops everything.
DiagnosticSink SetDiagnosticSink(DiagnosticSink sink);
// The place is the caller's own. (clang 14 has these, but not what std::source_location needs.)
void ReportDiagnostic(Severity severity, const CString& strText,
                      const char* pszSource = __builtin_FILE(), unsigned line = __builtin_LINE());

} // namespace platform

ZRHB_EXPORT_END
