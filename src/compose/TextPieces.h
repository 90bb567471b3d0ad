// One text out of many pieces, in one allocation.
#pragma once

#include <initializer_list>
#include <string>
#include <string_view>
#include <utility>

#include <platform/String.h>

namespace TextPieces {

using Pieces = std::initializer_list<std::string_view>;

// The text's part ahead of its first NUL byte. Valid until the text changes.
inline std::string_view UpToNul(std::string_view text) {
    return text.substr(0, text.find('\0'));
}
inline std::string_view UpToNul(const CString& strText) {
    return strText.GetString();
}

// Characters of all pieces together.
inline std::size_t LengthOf(Pieces pieces) {
    std::size_t length = 0;
    for (const std::string_view piece : pieces)
        length += piece.size();
    return length;
}

inline void Append(std::string& text, Pieces pieces) {
    for (const std::string_view piece : pieces)
        text += piece;
}

inline CString Join(Pieces pieces) {
    std::string text;
    text.reserve(LengthOf(pieces));
    Append(text, pieces);
    return CString(std::move(text));
}

} // namespace TextPieces
