#include <platform/String.h>

#include <algorithm>
#include <cstdio>
#include <cstring>

namespace {

constexpr std::size_t kNotFound = std::string_view::npos;

std::string_view ViewOf(const char* pszText) {
    return pszText ? std::string_view(pszText) : std::string_view();
}

std::size_t CutTo(std::size_t limit, int value) {
    return value < 0 ? 0 : std::min(limit, static_cast<std::size_t>(value));
}

int IndexOrMinusOne(std::size_t position) {
    return position == kNotFound ? -1 : static_cast<int>(position);
}

// memmem stays linear where the search of std::string_view becomes quadratic ("aaaa...b").
std::size_t FindFrom(std::string_view text, std::string_view sub, std::size_t start) {
    const void* hit = ::memmem(text.data() + start, text.size() - start, sub.data(), sub.size());
    return hit ? static_cast<std::size_t>(static_cast<const char*>(hit) - text.data()) : kNotFound;
}

unsigned char LowerAscii(char ch) {
    const auto byte = static_cast<unsigned char>(ch);
    return byte >= 'A' && byte <= 'Z' ? static_cast<unsigned char>(byte + ('a' - 'A')) : byte;
}

} // namespace

CString& CString::operator+=(const CString& text) {
    m_text += text.m_text;
    return *this;
}

CString& CString::operator+=(const char* pszText) {
    m_text += ViewOf(pszText);
    return *this;
}

CString& CString::operator+=(char ch) {
    m_text += ch;
    return *this;
}

char* CString::GetBuffer(int nMinLength) {
    if (nMinLength > GetLength()) m_text.resize(static_cast<std::size_t>(nMinLength));
    return m_text.data();
}

void CString::ReleaseBuffer(int nNewLength) {
    m_text.resize(CutTo(m_text.size(), nNewLength));
}

CString CString::Left(int nCount) const {
    return CString(View().substr(0, CutTo(m_text.size(), nCount)));
}

CString CString::Mid(int nFirst) const {
    return CString(View().substr(CutTo(m_text.size(), nFirst)));
}

CString CString::Mid(int nFirst, int nCount) const {
    const std::size_t first = CutTo(m_text.size(), nFirst);
    return CString(View().substr(first, CutTo(m_text.size() - first, nCount)));
}

CString CString::Right(int nCount) const {
    return CString(View().substr(m_text.size() - CutTo(m_text.size(), nCount)));
}

int CString::Find(const char* pszSub, int nStart) const {
    const std::string_view sub = ViewOf(pszSub);
    const std::size_t start = CutTo(m_text.size(), nStart);
    return IndexOrMinusOne(sub.empty() ? start : FindFrom(m_text, sub, start));
}

int CString::Find(char ch, int nStart) const {
    return IndexOrMinusOne(m_text.find(ch, CutTo(m_text.size(), nStart)));
}

int CString::Replace(const char* pszOld, const char* pszNew) {
    const std::string_view oldText = ViewOf(pszOld);
    const std::string_view newText = ViewOf(pszNew);
    if (oldText.empty()) return 0;
    // Built aside, since both arguments may point into this text.
    std::string result;
    std::size_t copied = 0;
    int count = 0;
    for (std::size_t hit = FindFrom(m_text, oldText, 0); hit != kNotFound;
         hit = FindFrom(m_text, oldText, copied)) {
        result.append(m_text, copied, hit - copied).append(newText);
        copied = hit + oldText.size();
        ++count;
    }
    if (count == 0) return 0;
    result.append(m_text, copied);
    m_text = std::move(result);
    return count;
}

void CString::TrimRight(const char* pszTargets) {
    m_text.erase(m_text.find_last_not_of(ViewOf(pszTargets)) + 1);
}

int CString::CompareNoCase(const char* pszOther) const {
    const std::string_view other = ViewOf(pszOther);
    const std::size_t common = std::min(m_text.size(), other.size());
    for (std::size_t i = 0; i < common; ++i) {
        const int difference = LowerAscii(m_text[i]) - LowerAscii(other[i]);
        if (difference != 0) return difference;
    }
    return m_text.size() < other.size() ? -1 : m_text.size() > other.size() ? 1 : 0;
}

void CString::Format(const char* pszFormat, ...) {
    std::va_list args;
    va_start(args, pszFormat);
    FormatV(pszFormat, args);
    va_end(args);
}

void CString::FormatV(const char* pszFormat, std::va_list args) {
    std::va_list argsForLength;
    va_copy(argsForLength, args);
    const int length = std::vsnprintf(nullptr, 0, pszFormat, argsForLength);
    va_end(argsForLength);
    // Built aside, since an argument may point into this text.
    std::string result;
    if (length > 0) {
        result.resize(static_cast<std::size_t>(length));
        std::vsnprintf(result.data(), result.size() + 1, pszFormat, args);
    }
    m_text = std::move(result);
}

CString operator+(const CString& a, const CString& b) {
    CString sum = a;
    sum += b;
    return sum;
}

CString operator+(const CString& a, const char* b) {
    CString sum = a;
    sum += b;
    return sum;
}

CString operator+(const char* a, const CString& b) {
    CString sum = a;
    sum += b;
    return sum;
}

int CStringArray::Add(const CString& text) {
    m_items.push_back(text);
    return GetSize() - 1;
}
