#include <ByteBuffer.h>

#include <algorithm>
#include <cstring>

CByteBuffer::CByteBuffer(int nInitial, int nGrow)
    : m_initial(static_cast<DWORD>(std::max(nInitial, 0))),
      m_grow(static_cast<DWORD>(std::max(nGrow, 0))) {}

// Grows by at least half of what is held, so that many small additions stay linear.
void CByteBuffer::Reserve(std::size_t nMore) {
    const std::size_t needed = m_bytes.size() + nMore;
    const std::size_t capacity = m_bytes.capacity();
    if (needed <= capacity) return;
    const std::size_t growth = std::max<std::size_t>(m_grow, capacity / 2);
    m_bytes.reserve(std::max(needed, capacity == 0 ? m_initial : capacity + growth));
}

void CByteBuffer::Add(const char* pszText) {
    if (pszText) Add(pszText, static_cast<DWORD>(std::strlen(pszText)));
}

void CByteBuffer::Add(const void* pData, DWORD nCount) {
    if (nCount == 0) return;
    Reserve(nCount);
    const BYTE* bytes = static_cast<const BYTE*>(pData);
    m_bytes.insert(m_bytes.end(), bytes, bytes + nCount);
}

CByteBuffer& CByteBuffer::operator+=(const char* pszText) {
    Add(pszText);
    return *this;
}

// Without the room of a first addition: many buffers only ever hold the text they are given.
CByteBuffer& CByteBuffer::operator=(const char* pszText) {
    const std::string_view text = pszText ? std::string_view(pszText) : std::string_view();
    m_bytes.assign(text.begin(), text.end());
    return *this;
}

void CByteBuffer::RemoveAll() {
    m_bytes.clear();
}

void CByteBuffer::Truncate(DWORD nCount) {
    if (nCount < m_bytes.size()) m_bytes.resize(nCount);
}

CString CByteBuffer::GetString() const {
    return CString(std::string_view(reinterpret_cast<const char*>(m_bytes.data()), m_bytes.size()));
}
