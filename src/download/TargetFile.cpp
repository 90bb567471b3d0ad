#include "download/TargetFile.h"

#include <utility>

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
    if (m_isOpen) m_pending = std::make_unique_for_overwrite<char[]>(kCollected);
    return m_isOpen;
}

char* TargetFile::Room(std::size_t size) {
    if (m_length + size > kCollected && !Flush()) return nullptr;
    return m_pending.get() + m_length;
}

bool TargetFile::Close() {
    if (!m_isOpen) return true;
    m_isOpen = false;
    const bool isFlushed = Flush();
    return Try([this] { m_file.Close(); }) && isFlushed;
}

bool TargetFile::Flush() {
    const auto count = static_cast<UINT>(std::exchange(m_length, 0));
    return count == 0 || Try([&] { m_file.Write(m_pending.get(), count); });
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
