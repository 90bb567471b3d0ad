#include "browser/chromium/Base64.h"

#include <openssl/evp.h>

namespace platform {
namespace {

const unsigned char* Input(std::string_view text) {
    return reinterpret_cast<const unsigned char*>(text.data());
}

unsigned char* Output(std::string& text) {
    return reinterpret_cast<unsigned char*>(text.data());
}

} // namespace

std::string EncodeBase64(std::string_view bytes) {
    std::string text((bytes.size() + 2) / 3 * 4 + 1, '\0'); // the library adds a NUL
    const int length = EVP_EncodeBlock(Output(text), Input(bytes), static_cast<int>(bytes.size()));
    text.resize(static_cast<std::size_t>(length));
    return text;
}

std::string DecodeBase64(std::string_view text) {
    std::string bytes(text.size() / 4 * 3, '\0');
    const int length = EVP_DecodeBlock(Output(bytes), Input(text), static_cast<int>(text.size()));
    if (length < 0) return {};
    // What the padding stands for comes out as zero bytes.
    std::size_t padding = 0;
    while (padding < 2 && padding < text.size() && text[text.size() - 1 - padding] == '=')
        ++padding;
    bytes.resize(static_cast<std::size_t>(length) - padding);
    return bytes;
}

} // namespace platform
