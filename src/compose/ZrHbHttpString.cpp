#include <ZrHbHttpString.h>

#include <string>
#include <utility>

#include <ZrHbHtmlTools.h>

#include "compose/ZrHbHttpString_Impl.h"

int CZrHbHttpString_Impl::Add(CString strName, CString strValue) {
    m_fields.push_back({std::move(strName), std::move(strValue)});
    return static_cast<int>(m_fields.size());
}

CString CZrHbHttpString_Impl::Join(std::string_view prefix) const {
    std::size_t length = prefix.size();
    for (const Field& field : m_fields)
        length += field.strName.View().size() + field.strValue.View().size() + 2;
    std::string text;
    text.reserve(length);
    text = prefix;
    const char* separator = "";
    for (const Field& field : m_fields) {
        text += std::exchange(separator, "&");
        text += field.strName.View();
        text += '=';
        text += field.strValue.View();
    }
    return CString(std::move(text));
}

int CZrHbHttpString_Impl::Empty() {
    const int count = static_cast<int>(m_fields.size());
    m_fields.clear();
    return count;
}

CZrHbHttpString::CZrHbHttpString() {
    CreateImpl(std::make_unique<CZrHbHttpString_Impl>());
}

CZrHbHttpString::CZrHbHttpString(const CZrHbHttpString& other) {
    CreateCopy(other);
}

CZrHbHttpString& CZrHbHttpString::operator=(const CZrHbHttpString& other) {
    AssignCopy(other);
    return *this;
}

CZrHbHttpString::~CZrHbHttpString() {
    DeleteImpl();
}

void CZrHbHttpString::DestroyImpl(CZrHbHttpString_Impl* pImpl) {
    std::default_delete<CZrHbHttpString_Impl>()(pImpl);
}

int CZrHbHttpString::AddField(CString strName, CString strValue, int nEncode) {
    if (!GetImpl()) return 0;
    if (nEncode) strValue = CZrHbHtmlTools::URLEncodeString(strValue);
    return GetImpl()->Add(std::move(strName), std::move(strValue));
}

CString CZrHbHttpString::GetPostString() const {
    return GetImpl() ? GetImpl()->Join("") : CString();
}

CString CZrHbHttpString::GetGetString() const {
    return GetImpl() ? GetImpl()->Join("?") : CString("?");
}

int CZrHbHttpString::Empty() {
    return GetImpl() ? GetImpl()->Empty() : 0;
}
