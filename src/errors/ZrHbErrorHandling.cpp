#include <ZrHbErrorHandling.h>

#include <array>
#include <cstdio>
#include <mutex>

#include <platform/Resources.h>

#include "errors/LibraryModule.h"
#include "siblings/ZrAbErrorFile.h"

namespace {

constexpr std::size_t kFormatBufferSize = 10'240; // with the NUL
constexpr const char* kOverflowText = "*** _LogMsg: Internal Error: Buffer not large enough!";

struct SourceLocation {
    CString file;
    unsigned long line = 0;
};

// What the error functions remember for the whole process.
class ErrorState {
public:
    static ErrorState& Instance() {
        static ErrorState state;
        return state;
    }

    void SetLocation(const char* pszSourceFile, unsigned long nSourceLine) {
        const std::lock_guard guard(m_lock);
        m_location = {pszSourceFile, nSourceLine};
    }

    SourceLocation Location() const {
        const std::lock_guard guard(m_lock);
        return m_location;
    }

    CString LoadText(unsigned int nResourceId) {
        const std::lock_guard guard(m_lock);
        if (!m_loadedText.LoadString(nResourceId))
            m_loadedText.Format("Internal Error: LoadString(%d) failed.",
                                static_cast<int>(nResourceId));
        return m_loadedText;
    }

private:
    mutable std::mutex m_lock;
    SourceLocation m_location;
    CString m_loadedText;
};

__attribute__((format(printf, 1, 0))) CString FormatBounded(const char* pszFormat,
                                                            std::va_list args) {
    std::array<char, kFormatBufferSize> buffer;
    const int length = std::vsnprintf(buffer.data(), buffer.size(), pszFormat, args);
    if (length < 0 || static_cast<std::size_t>(length) >= buffer.size()) return kOverflowText;
    return buffer.data();
}

void WriteRecord(EZrAbAppGroup eGroup, const CString& strText) {
    const SourceLocation location = ErrorState::Instance().Location();
    CZrAbErrorFile(eGroup).WriteErrorText(AfxGetModuleState()->m_strCurrentAppName, strText,
                                          location.file, location.line, CString());
}

} // namespace

CString CZrHbErrorHandling::LoadStringAndGet(unsigned int nResourceId) {
    EnsureLibraryModule();
    return ErrorState::Instance().LoadText(nResourceId);
}

CString CZrHbErrorHandling::CSFmt(const char* pszFormat, ...) {
    std::va_list args;
    va_start(args, pszFormat);
    const CString text = FormatBounded(pszFormat, args);
    va_end(args);
    return text;
}

void CZrHbErrorHandling::__ZrHb_SetParams(const char* pszSourceFile, unsigned long nSourceLine) {
    ErrorState::Instance().SetLocation(pszSourceFile, nSourceLine);
}

void CZrHbErrorHandling::__ZrHb_WriteErrorText(EZrAbAppGroup eGroup, const char* pszText) {
    __ZrHb_WriteErrorText_Fmt(eGroup, "%s", pszText);
}

void CZrHbErrorHandling::__ZrHb_WriteErrorText_Fmt(EZrAbAppGroup eGroup, const char* pszFormat,
                                                   ...) {
    std::va_list args;
    va_start(args, pszFormat);
    const CString text = FormatBounded(pszFormat, args);
    va_end(args);
    WriteRecord(eGroup, text);
}
