// Rewriting a text over itself.
#pragma once

#include <cstddef>
#include <cstring>
#include <string_view>

#include <platform/String.h>

// Writes into the text that its user reads, which must not write more than it has read.
class InPlaceWriter {
public:
    explicit InPlaceWriter(char* text) : m_text(text) {}

    void Put(char ch) { m_text[m_length++] = ch; }
    // Appends the part of the text from `first` up to `last`.
    void Copy(std::size_t first, std::size_t last) {
        if (first != m_length) std::memmove(m_text + m_length, m_text + first, last - first);
        m_length += last - first;
    }
    void CutTo(std::size_t length) { m_length = length; }

    std::size_t Length() const { return m_length; }
    std::string_view View() const { return {m_text, m_length}; }

private:
    char* m_text;
    std::size_t m_length = 0;
};

// Changes a page by a function that takes its text and length and returns the new length.
template <class TRewrite>
void RewriteInPlace(CString& page, TRewrite rewrite) {
    const int length = page.GetLength();
    const std::size_t newLength = rewrite(page.GetBuffer(length), static_cast<std::size_t>(length));
    page.ReleaseBuffer(static_cast<int>(newLength));
}
