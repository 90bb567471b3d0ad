#include "download/TargetFile.h"

#include <memory>

#include <platform/Exceptions.h>
#include <platform/LastError.h>

namespace {

constexpr std::size_t kCollected = 256 * 1024; // bytes

struct DeleteException {
    void operator()(CException* exception) const { exception->Delete(); }
};

} // namespace

bool TargetFile::Open(const CString& strFile) {
    m_isOpen = m_file.Open(strFile, CFile::modeCreate | CFile::modeWrite) != FALSE;
    if (!m_isOpen) m_error = platform::SystemErrorText(GetLastError());
    if (m_isOpen) m_pending.reserve(kCollected);
    return m_isOpen;
}

bool TargetFile::Write(std::string_view bytes) {
    if (m_pending.size() + bytes.size() > kCollected && !Flush()) return false;
    m_pending += bytes;
    return true;
}

bool TargetFile::Close() {
    if (!m_isOpen) return true;
    m_isOpen = false;
    const bool isFlushed = Flush();
    return Try([this] { m_file.Close(); }) && isFlushed;
}

bool TargetFile::Flush() {
    if (m_pending.empty()) return true;
    const bool isWritten =
        Try([this] { m_file.Write(m_pending.data(), static_cast<UINT>(m_pending.size())); });
    m_pending.clear();
    return isWritten;
}

template <class TAction>
bool TargetFile::Try(TAction action) {
    try {
        action();
        return true;
    } catch (CFileException* exception) {
        const std::unique_ptr<CFileException, DeleteException> caught(exception);
        if (m_error.IsEmpty()) m_error = platform::SystemErrorText(caught->m_lOsError);
        return false;
    }
}
