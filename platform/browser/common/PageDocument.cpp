#include "browser/common/PageDocument.h"

#include <algorithm>
#include <vector>

namespace platform {

HRESULT PageDocument::Save(IStream* pStream, BOOL) {
    if (!pStream) return E_POINTER;
    // Slice by slice, so that the lock is never held while the stream works. What arrives
    // meanwhile is left for the next call.
    constexpr std::size_t sliceSize = 256 * 1024;
    const std::size_t end = m_body->Size();
    std::vector<char> slice(std::min(end, sliceSize));
    for (std::size_t offset = 0; offset < end;) {
        const std::size_t count =
            m_body->Copy(offset, slice.data(), std::min(end - offset, slice.size()));
        ULONG written = 0;
        const HRESULT hr = pStream->Write(slice.data(), static_cast<ULONG>(count), &written);
        if (FAILED(hr)) return hr;
        if (written != count) return E_FAIL;
        offset += count;
    }
    return S_OK;
}

} // namespace platform
