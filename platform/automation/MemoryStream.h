// Streams on memory that clones share.
#pragma once

#include <memory>
#include <string>

#include <platform/Automation.h>

namespace platform {

// One thread's; the content lives as long as one of its streams.
class MemoryStream final : public ComObject<IStream> {
public:
    MemoryStream() : m_content(std::make_shared<std::string>()) {}
    MemoryStream(std::shared_ptr<std::string> content, std::size_t position)
        : m_content(std::move(content)), m_position(position) {}

    HRESULT Read(void* pBuffer, ULONG nCount, ULONG* pnRead) override;
    HRESULT Write(const void* pData, ULONG nCount, ULONG* pnWritten) override;
    HRESULT Clone(IStream** ppStream) override;

private:
    const std::shared_ptr<std::string> m_content;
    std::size_t m_position = 0;
};

} // namespace platform
