#include <algorithm>
#include <cstring>
#include <memory>

#include <platform/CodePage.h>
#include <platform/Variant.h>

// A BSTR points at the characters of one block: its length, the characters, a NUL.

namespace {

struct Header {
    UINT length;
};
static_assert(sizeof(Header) % alignof(OLECHAR) == 0);

Header* HeaderOf(BSTR text) {
    return reinterpret_cast<Header*>(text) - 1;
}

} // namespace

BSTR SysAllocStringLen(const OLECHAR* pText, UINT nLength) {
    const std::size_t size = sizeof(Header) + (std::size_t{nLength} + 1) * sizeof(OLECHAR);
    void* block = std::malloc(size);
    if (!block) return nullptr;
    auto* header = ::new (block) Header{nLength};
    const BSTR text = reinterpret_cast<BSTR>(header + 1);
    if (pText) std::copy_n(pText, nLength, text);
    text[nLength] = 0;
    return text;
}

void SysFreeString(BSTR bstrText) {
    if (bstrText) std::free(HeaderOf(bstrText));
}

UINT SysStringLen(BSTR bstrText) {
    return bstrText ? HeaderOf(bstrText)->length : 0;
}

CComBSTR::CComBSTR(std::string_view ansi) {
    const std::u16string wide = platform::WideFromAnsi(ansi);
    m_str = SysAllocStringLen(wide.data(), static_cast<UINT>(wide.size()));
}

BSTR* CComBSTR::operator&() {
    SysFreeString(std::exchange(m_str, nullptr));
    return &m_str;
}

CString CComBSTR::ToAnsi() const {
    return CString(std::string_view(platform::AnsiFromWide(View())));
}
