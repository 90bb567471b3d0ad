// 8-bit text in the ANSI code page (1252) and ordered arrays of it.
#pragma once

#include <cstdarg>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "Export.h"
#include "Types.h"

ZRHB_EXPORT_BEGIN

class CString {
public:
    CString() = default;
    CString(const char* pszText) : m_text(pszText ? pszText : "") {}
    // nLength bytes at pText, NUL bytes included.
    CString(const char* pText, int nLength) : m_text(pText, static_cast<std::size_t>(nLength)) {}
    explicit CString(std::string_view text) : m_text(text) {}
    // Takes the text over without copying it.
    explicit CString(std::string&& text) : m_text(std::move(text)) {}

    // The text with a terminating NUL; valid until the text changes.
    operator const char*() const { return m_text.c_str(); }
    const char* GetString() const { return m_text.c_str(); }
    // All bytes, also behind a NUL.
    std::string_view View() const { return m_text; }

    int GetLength() const { return static_cast<int>(m_text.size()); }
    bool IsEmpty() const { return m_text.empty(); }
    void Empty() { m_text.clear(); }
    // The text for changing in place: at least nMinLength characters and a NUL. ReleaseBuffer(n)
    // ends the change and cuts the text to n characters.
    char* GetBuffer(int nMinLength);
    void ReleaseBuffer(int nNewLength);
    char GetAt(int nIndex) const { return m_text[static_cast<std::size_t>(nIndex)]; }

    CString& operator+=(const CString& text);
    CString& operator+=(const char* pszText);
    CString& operator+=(char ch);

    // Parts of the text; positions and counts outside it are cut to it.
    CString Left(int nCount) const;
    CString Mid(int nFirst) const;
    CString Mid(int nFirst, int nCount) const;
    CString Right(int nCount) const;

    // Index of the first occurrence at or behind nStart, or -1. An empty text occurs everywhere:
    // at nStart, cut to the length.
    int Find(const char* pszSub, int nStart = 0) const;
    int Find(char ch, int nStart = 0) const;
    // Replaces every occurrence, left to right, without looking at what was put in; returns how
    // many there were.
    int Replace(const char* pszOld, const char* pszNew);

    // Cuts these characters off the end. Without arguments: white space (blank, \t \n \v \f \r).
    void TrimRight(const char* pszTargets = " \t\n\v\f\r");

    // ASCII letters only.
    int CompareNoCase(const char* pszOther) const;

    // printf formatting; the text may grow without limit. Arguments may point into this text. Empty
    // when the format is faulty.
    void Format(const char* pszFormat, ...) __attribute__((format(printf, 2, 3)));
    void FormatV(const char* pszFormat, std::va_list args) __attribute__((format(printf, 2, 0)));

    // Loads a string resource from the registered modules (see Resources.h). FALSE, and an empty
    // text, when there is none or it is empty.
    BOOL LoadString(UINT nID);

    friend bool operator==(const CString& a, const CString& b) { return a.m_text == b.m_text; }
    friend bool operator==(const CString& a, const char* b) { return a.m_text == b; }
    friend auto operator<=>(const CString& a, const CString& b) { return a.m_text <=> b.m_text; }

private:
    std::string m_text;
};

CString operator+(const CString& a, const CString& b);
CString operator+(const CString& a, const char* b);
CString operator+(const char* a, const CString& b);

class CStringArray {
public:
    int GetSize() const { return static_cast<int>(m_items.size()); }
    const CString& GetAt(int nIndex) const { return m_items[static_cast<std::size_t>(nIndex)]; }
    const CString& operator[](int nIndex) const { return GetAt(nIndex); }
    int Add(const CString& text);
    void RemoveAt(int nIndex) { m_items.erase(m_items.begin() + nIndex); }
    void RemoveAll() { m_items.clear(); }
    // Replaces the content by a copy of other's.
    void Copy(const CStringArray& other) { m_items = other.m_items; }

private:
    std::vector<CString> m_items;
};

ZRHB_EXPORT_END
