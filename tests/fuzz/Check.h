// What a target states about its input.
#pragma once

#include <cstdint>
#include <cstdlib>
#include <string_view>

inline void Check(bool holds) {
    if (!holds) std::abort(); // which names the input
}

// The text up to the first `end`, which is taken from the front of `input` with it.
inline std::string_view TakeUntil(std::string_view& input, char end) {
    const std::string_view text = input.substr(0, input.find(end));
    input.remove_prefix(text.size() < input.size() ? text.size() + 1 : text.size());
    return text;
}

inline std::string_view AsText(const std::uint8_t* data, std::size_t size) {
    return {reinterpret_cast<const char*>(data), size};
}
