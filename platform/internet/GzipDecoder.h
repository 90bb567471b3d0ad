// Undoes the content codings gzip and deflate.
#pragma once

#include <zlib.h>

#include "internet/ContentDecoder.h"

namespace platform {

class GzipDecoder final : public ContentDecoder {
public:
    // mayBeBare: some servers leave the wrapper of deflate away.
    explicit GzipDecoder(bool mayBeBare = false);
    ~GzipDecoder() override;
    GzipDecoder(const GzipDecoder&) = delete;
    GzipDecoder& operator=(const GzipDecoder&) = delete;

    std::size_t Decode(std::string_view& input, void* output, std::size_t room) override;

private:
    void LookAtFirstByte(char first);
    bool BeginNextMember(std::string_view& input);

    z_stream m_stream{};
    bool m_mayBeBare;
    bool m_isMemberOver = false;
    bool m_isPadding = false; // what follows the last member
};

} // namespace platform
