// Growable sequence of bytes.
#pragma once

#include <vector>

#include "platform/Export.h"
#include "platform/String.h"

ZRHB_EXPORT_BEGIN

class CByteBuffer {
public:
    // nInitial: bytes reserved at the first addition to an empty buffer; nGrow: smallest growth in
    // bytes after that. Both only tune memory use.
    CByteBuffer(int nInitial, int nGrow);
    CByteBuffer(const CByteBuffer&) = default;
    CByteBuffer& operator=(const CByteBuffer&) = default;
    CByteBuffer(CByteBuffer&&) = default;
    CByteBuffer& operator=(CByteBuffer&&) = default;
    virtual ~CByteBuffer() = default;

    // Appends the text's bytes without its NUL.
    void Add(const char* pszText);
    // Appends nCount bytes; pData may be null when nCount is 0.
    void Add(const void* pData, DWORD nCount);
    CByteBuffer& operator+=(const char* pszText);
    // Replaces the content by the text's bytes without its NUL.
    CByteBuffer& operator=(const char* pszText);
    void RemoveAll();
    // Makes room for nMore further bytes: adding up to that many moves nothing.
    void Reserve(std::size_t nMore);
    // Removes everything behind the first nCount bytes.
    void Truncate(DWORD nCount);

    // All bytes as a text, NUL bytes included.
    CString GetString() const;
    DWORD GetSize() const { return static_cast<DWORD>(m_bytes.size()); }
    // Valid until the content changes; not NUL-terminated.
    const BYTE* GetData() const { return m_bytes.data(); }

private:
    std::vector<BYTE> m_bytes;
    DWORD m_initial;
    DWORD m_grow;
};

ZRHB_EXPORT_END
