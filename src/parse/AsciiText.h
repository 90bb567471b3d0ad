// Characters of 8-bit text, without regard to any locale.
#pragma once

#include <string_view>

inline constexpr std::string_view kWhiteSpace = " \t\r\n\v\f";

constexpr bool IsAsciiDigit(char ch) {
    return ch >= '0' && ch <= '9';
}
constexpr bool IsAsciiUpper(char ch) {
    return ch >= 'A' && ch <= 'Z';
}
constexpr bool IsAsciiLower(char ch) {
    return ch >= 'a' && ch <= 'z';
}
constexpr char AsciiUpper(char ch) {
    return IsAsciiLower(ch) ? static_cast<char>(ch - ('a' - 'A')) : ch;
}

// Without the white space at both ends.
constexpr std::string_view Trimmed(std::string_view text) {
    const std::size_t first = text.find_first_not_of(kWhiteSpace);
    if (first == std::string_view::npos) return {};
    return text.substr(first, text.find_last_not_of(kWhiteSpace) + 1 - first);
}
