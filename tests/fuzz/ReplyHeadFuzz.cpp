// The values of a reply's fields that are taken apart here (libcurl reads the lines), and its body
// in each content coding. The first byte says in what pieces the body comes.
#include <algorithm>
#include <string>

#include "Check.h"
#include "browser/builtin/RefreshRule.h"
#include "browser/common/HeaderBlock.h"
#include "browser/common/PageType.h"
#include "internet/AuthenticationRealm.h"
#include "internet/ContentDecoder.h"

namespace {

using namespace platform;

constexpr std::size_t kMostOutput = 1'000'000; // of what could unpack to very much

bool HasControls(std::string_view text) {
    return std::ranges::any_of(text, [](char letter) {
        return static_cast<unsigned char>(letter) < ' ' || letter == 127;
    });
}

struct Unpacked {
    std::string bytes;
    bool isBroken = false;
    bool isComplete = false;
    bool operator==(const Unpacked&) const = default;
};

Unpacked Unpack(const char* coding, std::string_view packed, std::size_t pieceSize,
                std::size_t room) {
    const auto decoder = ContentDecoder::For(coding);
    Unpacked result;
    std::string output(room, '\0');
    while (!packed.empty() && !decoder->IsBroken() && result.bytes.size() < kMostOutput) {
        const std::string copy(packed.substr(0, pieceSize));
        std::string_view piece = copy;
        std::size_t count = 0;
        do {
            count = decoder->Decode(piece, output.data(), room);
            Check(count <= room && piece.size() <= copy.size());
            result.bytes.append(output, 0, count);
        } while (count > 0 && result.bytes.size() < kMostOutput);
        packed.remove_prefix(copy.size());
    }
    result.isBroken = decoder->IsBroken();
    result.isComplete = decoder->IsComplete();
    if (result.isBroken) result.bytes.clear(); // what came before is not for sure
    return result;
}

void CheckFields(std::string_view text) {
    Check(!HasControls(RealmOf(std::string(text))));
    if (const auto refresh = ParseRefresh(text)) Check(refresh->seconds >= 0);
    const std::string type = WithoutParameters(text);
    Check(WithoutParameters(type) == type && type.find(';') == std::string::npos);

    std::string error;
    const auto fields = ParseHeaderBlock(text, 0, error);
    Check(fields ? error.empty() : !error.empty());
    if (!fields) return;
    std::string again;
    for (const HeaderField& field : *fields) {
        Check(IsToken(field.name) && field.value.find_first_of("\r\n") == std::string::npos);
        again += field.name + ": " + field.value + "\r\n";
    }
    Check(ParseHeaderBlock(again, 0, error)->size() == fields->size());
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0) return 0;
    const std::string_view text = AsText(data + 1, size - 1);
    CheckFields(text);
    for (const char* coding : {"gzip", "deflate", "br"}) {
        const Unpacked whole = Unpack(coding, text, text.size(), 1 << 16);
        if (whole.bytes.size() < kMostOutput)
            Check(Unpack(coding, text, data[0] + 1u, 100) == whole);
    }
    return 0;
}
