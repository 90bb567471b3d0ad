// Undoes the content codings gzip and deflate (RFC 9110, 8.4.1).
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include <zlib.h>

namespace platform {

class GzipDecoder {
public:
    GzipDecoder();
    ~GzipDecoder();
    GzipDecoder(const GzipDecoder&) = delete;
    GzipDecoder& operator=(const GzipDecoder&) = delete;

    // Whether the value of a Content-Encoding field names a coding that this undoes.
    static bool Knows(const std::string& coding);

    // Decodes from the front of `input` as much as fits into `room` bytes at `output`, and shortens
    // `input` to what has not been used. Returns the number of bytes written; 0 means that more
    // input is needed, or the end.
    std::size_t Decode(std::string_view& input, void* output, std::size_t room);

    bool IsBroken() const { return m_isBroken; }
    // Nothing is missing: input may end here.
    bool IsComplete() const { return m_isComplete; }

private:
    bool BeginNextMember(std::string_view& input);

    z_stream m_stream{};
    bool m_isComplete = true;
    bool m_isMemberOver = false;
    bool m_isPadding = false; // what follows the last member
    bool m_isBroken = false;
};

} // namespace platform
