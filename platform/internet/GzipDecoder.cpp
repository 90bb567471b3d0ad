#include "internet/GzipDecoder.h"

namespace platform {
namespace {

constexpr int kLargestWindow = 15;
constexpr int kDetectGzipAndZlib = 32;
constexpr char kGzipMark = '\x1F';
constexpr int kZlibMark = 8; // in the low half of the first byte

} // namespace

GzipDecoder::GzipDecoder(bool mayBeBare) : m_mayBeBare(mayBeBare) {
    m_isBroken = inflateInit2(&m_stream, kLargestWindow + kDetectGzipAndZlib) != Z_OK;
}

GzipDecoder::~GzipDecoder() {
    inflateEnd(&m_stream);
}

void GzipDecoder::LookAtFirstByte(char first) {
    if (m_mayBeBare && first != kGzipMark && (first & 0x0F) != kZlibMark)
        m_isBroken = inflateReset2(&m_stream, -kLargestWindow) != Z_OK;
    m_mayBeBare = false;
}

// Members follow each other; other bytes behind one are padding.
bool GzipDecoder::BeginNextMember(std::string_view& input) {
    m_isPadding = m_isPadding || (!input.empty() && input.front() != kGzipMark);
    if (input.empty() || m_isPadding) {
        input = {};
        return false;
    }
    inflateReset(&m_stream);
    m_isMemberOver = false;
    return true;
}

std::size_t GzipDecoder::Decode(std::string_view& input, void* output, std::size_t room) {
    m_stream.next_out = static_cast<Bytef*>(output);
    m_stream.avail_out = static_cast<uInt>(room);
    while (!m_isBroken && m_stream.avail_out > 0) {
        if (m_isMemberOver && !BeginNextMember(input)) break;
        if (!input.empty()) {
            m_isComplete = false;
            LookAtFirstByte(input.front());
        }
        // The library takes a pointer to what it does not change.
        m_stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(input.data()));
        m_stream.avail_in = static_cast<uInt>(input.size());
        const int outcome = inflate(&m_stream, Z_NO_FLUSH);
        input.remove_prefix(input.size() - m_stream.avail_in);
        if (outcome == Z_BUF_ERROR) break;
        m_isMemberOver = m_isComplete = outcome == Z_STREAM_END;
        m_isBroken = outcome != Z_OK && outcome != Z_STREAM_END;
    }
    return room - m_stream.avail_out;
}

} // namespace platform
