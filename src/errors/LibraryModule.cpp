#include "errors/LibraryModule.h"

#include <optional>

#include <platform/Diagnostics.h>

#include "errors/StringTable.h"
#include "siblings/ZrAbErrorFile.h"

namespace {

void WriteToLog(platform::Severity severity, const char* pszSource, unsigned line,
                const CString& strText) {
    const auto eLevel = severity == platform::Severity::failure
                            ? CZrAbErrorFile::eErrorLevel_Failure
                            : CZrAbErrorFile::eErrorLevel_Trace;
    CZrAbErrorFile::Log(strText, eAppGroup_2, pszSource, line, "", "", eLevel,
                        CZrAbErrorFile::eFunctionType_Http);
}

class LibraryModule {
public:
    LibraryModule() {
        m_module.moduleName = kLibraryModuleName;
        m_module.strings = LibraryStrings();
        if (AfxInitExtensionModule(m_module)) m_strings.emplace(m_module);
        m_sinkBefore = platform::SetDiagnosticSink(WriteToLog);
    }

    ~LibraryModule() {
        // A sink that somebody else has put in since then is not the library's to take out.
        const platform::DiagnosticSink current = platform::SetDiagnosticSink(m_sinkBefore);
        if (current != WriteToLog) platform::SetDiagnosticSink(current);
    }

    LibraryModule(const LibraryModule&) = delete;
    LibraryModule& operator=(const LibraryModule&) = delete;

    const AFX_EXTENSION_MODULE& Module() const { return m_module; }

private:
    AFX_EXTENSION_MODULE m_module;
    std::optional<CDynLinkLibrary> m_strings;
    platform::DiagnosticSink m_sinkBefore = nullptr;
};

// At load time, whoever calls first.
[[maybe_unused]] const AFX_EXTENSION_MODULE& registeredAtLoad = EnsureLibraryModule();

} // namespace

const AFX_EXTENSION_MODULE& EnsureLibraryModule() {
    static const LibraryModule module;
    return module.Module();
}
