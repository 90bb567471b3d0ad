#include <ZrHbHttpHeaders.h>

#include <algorithm>
#include <memory>
#include <string>
#include <string_view>

#include <platform/UrlMoniker.h>

#include "compose/HeaderList.h"
#include "compose/UserAgentText.h"
#include "parse/AsciiText.h"

class CZrHbHttpHeaders_Impl {
public:
    virtual ~CZrHbHttpHeaders_Impl() = default;

    bool AddBlock(std::string_view block, CZrHbHttpHeaders::EZrHbAddHandling eHandling) {
        if (block.empty()) return false;
        bool isWhole = true;
        for (;;) {
            const std::size_t lineEnd = block.find(kLineEnd);
            isWhole &= AddLine(block.substr(0, lineEnd), eHandling);
            if (lineEnd == std::string_view::npos) return isWhole;
            block.remove_prefix(lineEnd + kLineEnd.size());
        }
    }

    HeaderList headers;
    CStringArray order;

private:
    bool AddLine(std::string_view line, CZrHbHttpHeaders::EZrHbAddHandling eHandling) {
        const std::size_t colon = line.find(':');
        if (colon == std::string_view::npos) return false;
        const std::string_view rest = line.substr(colon + 1);
        const std::size_t value = std::min(rest.find_first_not_of(kWhiteSpace), rest.size());
        return headers.Add(line.substr(0, colon), rest.substr(value), eHandling);
    }
};

CZrHbHttpHeaders::CZrHbHttpHeaders() {
    CreateImpl(std::make_unique<CZrHbHttpHeaders_Impl>());
}

CZrHbHttpHeaders::CZrHbHttpHeaders(const CZrHbHttpHeaders& other) {
    CreateCopy(other);
}

CZrHbHttpHeaders& CZrHbHttpHeaders::operator=(const CZrHbHttpHeaders& other) {
    AssignCopy(other);
    return *this;
}

CZrHbHttpHeaders::~CZrHbHttpHeaders() {
    DeleteImpl();
}

void CZrHbHttpHeaders::DestroyImpl(CZrHbHttpHeaders_Impl* pImpl) {
    std::default_delete<CZrHbHttpHeaders_Impl>()(pImpl);
}

int CZrHbHttpHeaders::AddHeaders(const CString& strBlock, EZrHbAddHandling eHandling) {
    return GetImpl() && GetImpl()->AddBlock(strBlock.View(), eHandling) ? 1 : 0;
}

int CZrHbHttpHeaders::AddHeaderFieldText(const CString& strName, const CString& strValue,
                                         EZrHbAddHandling eHandling) {
    return GetImpl() && GetImpl()->headers.Add(strName.View(), strValue.View(), eHandling) ? 1 : 0;
}

int CZrHbHttpHeaders::AddHeaderFieldNumeric(const CString& strName, unsigned long nValue,
                                            EZrHbAddHandling eHandling) {
    return AddHeaderFieldText(strName, CString(std::to_string(nValue)), eHandling);
}

void CZrHbHttpHeaders::SetHeaderOrder(const CStringArray& order) {
    if (GetImpl()) GetImpl()->order.Copy(order);
}

CString CZrHbHttpHeaders::GetHeaders() const {
    return GetImpl() ? CString(GetImpl()->headers.Print(GetImpl()->order)) : CString();
}

CString CZrHbHttpHeaders::GetHeaderFieldValue(const CString& strName) const {
    if (!GetImpl()) return CString();
    const HeaderField* field = GetImpl()->headers.Find(strName.GetString());
    return field ? CString(std::string_view(field->value)) : CString();
}

CString CZrHbHttpHeaders::GetVeltrumUserAgentValue() {
    return VeltrumUserAgent(AnswerOf([](char* pBuffer, DWORD nSize, DWORD* pLength) {
        return UrlMkGetSessionOption(URLMON_OPTION_USERAGENT, pBuffer, nSize, pLength, 0);
    }));
}
