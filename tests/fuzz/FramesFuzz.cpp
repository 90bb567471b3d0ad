// The first byte says how the rest, a stream of the browser's messages, is cut into pieces.
#include <random>
#include <string>
#include <vector>

#include "Check.h"
#include "browser/chromium/FrameReader.h"

namespace {

constexpr std::size_t kMaxMessageBytes = 64;

struct Received {
    std::vector<std::string> messages;
    bool isTooLong = false;
    bool operator==(const Received&) const = default;
};

Received ReadInPieces(std::string_view stream, unsigned seed) {
    platform::FrameReader reader(kMaxMessageBytes);
    std::minstd_rand random(seed);
    Received received;
    while (!stream.empty() && !received.isTooLong) {
        // Exactly that large, so that a sanitizer sees a read behind the end.
        const std::string piece(stream.substr(0, random() % 40));
        stream.remove_prefix(piece.size());
        received.isTooLong = !reader.Feed(
            piece, [&](std::string_view message) { received.messages.emplace_back(message); });
    }
    return received;
}

Received Literally(std::string_view stream) {
    Received received;
    while (true) {
        const std::size_t end = stream.find('\0');
        if (std::min(end, stream.size()) > kMaxMessageBytes) {
            received.isTooLong = true;
            return received;
        }
        if (end == std::string_view::npos) return received;
        received.messages.emplace_back(stream.substr(0, end));
        stream.remove_prefix(end + 1);
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0) return 0;
    const std::string_view stream = AsText(data + 1, size - 1);
    Check(ReadInPieces(stream, data[0] + 1u) == Literally(stream));
    return 0;
}
