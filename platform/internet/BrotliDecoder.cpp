#include "internet/BrotliDecoder.h"

namespace platform {

std::size_t BrotliDecoder::Decode(std::string_view& input, void* output, std::size_t room) {
    if (m_isOver) input = {}; // what follows the end is padding
    if (m_isOver || m_isBroken) return 0;
    std::size_t inputLeft = input.size();
    std::size_t roomLeft = room;
    const auto* nextInput = reinterpret_cast<const std::uint8_t*>(input.data());
    auto* nextOutput = static_cast<std::uint8_t*>(output);
    const auto outcome = BrotliDecoderDecompressStream(m_state.get(), &inputLeft, &nextInput,
                                                       &roomLeft, &nextOutput, nullptr);
    m_isOver = outcome == BROTLI_DECODER_RESULT_SUCCESS;
    m_isBroken = outcome == BROTLI_DECODER_RESULT_ERROR;
    m_isComplete = m_isOver || (m_isComplete && input.empty());
    input.remove_prefix(input.size() - inputLeft);
    return room - roomLeft;
}

} // namespace platform
