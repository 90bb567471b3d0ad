// What a target states about its input, and how it takes texts apart.
#pragma once

#include <charconv>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

inline void Check(bool holds) {
    if (!holds) std::abort(); // which names the input
}

// The text up to the first `end`, which is taken from the front of `input` with it.
inline std::string_view TakeUntil(std::string_view& input, std::string_view end) {
    const std::size_t found = input.find(end);
    const std::string_view text = input.substr(0, found);
    input.remove_prefix(found == input.npos ? input.size() : found + end.size());
    return text;
}

inline std::string_view AsText(const std::uint8_t* data, std::size_t size) {
    return {reinterpret_cast<const char*>(data), size};
}

inline std::string UrlDecoded(std::string_view text) {
    std::string decoded;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] != '%') {
            decoded += text[i] == '+' ? ' ' : text[i];
            continue;
        }
        Check(i + 2 < text.size());
        unsigned value = 0;
        const char* const digits = text.data() + i + 1;
        Check(std::from_chars(digits, digits + 2, value, 16).ptr == digits + 2);
        decoded += static_cast<char>(value);
        i += 2;
    }
    return decoded;
}
