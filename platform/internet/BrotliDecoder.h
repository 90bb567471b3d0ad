// Undoes the content coding br (RFC 7932).
#pragma once

#include <brotli/decode.h>

#include "internet/ContentDecoder.h"

namespace platform {

class BrotliDecoder final : public ContentDecoder {
public:
    std::size_t Decode(std::string_view& input, void* output, std::size_t room) override;

private:
    struct Cleanup {
        void operator()(BrotliDecoderState* state) const { BrotliDecoderDestroyInstance(state); }
    };

    std::unique_ptr<BrotliDecoderState, Cleanup> m_state{
        BrotliDecoderCreateInstance(nullptr, nullptr, nullptr)};
    bool m_isOver = false;
};

} // namespace platform
