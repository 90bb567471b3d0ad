#include "automation/MemoryStream.h"

#include <algorithm>
#include <new>

namespace platform {

HRESULT MemoryStream::Read(void* pBuffer, ULONG nCount, ULONG* pnRead) {
    if (!pBuffer) return E_POINTER;
    const std::size_t left = m_content->size() - std::min(m_position, m_content->size());
    const std::size_t count = std::min<std::size_t>(nCount, left);
    std::copy_n(m_content->data() + m_position, count, static_cast<char*>(pBuffer));
    m_position += count;
    if (pnRead) *pnRead = static_cast<ULONG>(count);
    return S_OK;
}

HRESULT MemoryStream::Write(const void* pData, ULONG nCount, ULONG* pnWritten) {
    if (!pData && nCount > 0) return E_POINTER;
    try {
        if (m_content->size() < m_position + nCount) m_content->resize(m_position + nCount);
    } catch (const std::bad_alloc&) {
        return E_OUTOFMEMORY;
    }
    std::copy_n(static_cast<const char*>(pData), nCount, m_content->data() + m_position);
    m_position += nCount;
    if (pnWritten) *pnWritten = nCount;
    return S_OK;
}

HRESULT MemoryStream::Clone(IStream** ppStream) {
    if (!ppStream) return E_POINTER;
    *ppStream = MakeObject<MemoryStream>(m_content, m_position).Detach();
    return S_OK;
}

} // namespace platform
