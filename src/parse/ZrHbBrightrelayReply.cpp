#include <ZrHbBrightrelayReply.h>

#include <algorithm>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace {

constexpr const char* kPreferredStart = "<!-- BRIGHTRELAY ";
constexpr const char* kSecondStart = "<!--BRIGHTRELAY ";
constexpr const char* kEnd = "-->";
constexpr int kNoError = 0;
constexpr int kFailed = -1;

std::string WithoutLineEnds(std::string_view text) {
    std::string joined;
    joined.reserve(text.size());
    while (!text.empty()) {
        const std::size_t lineEnd = std::min(text.find_first_of("\r\n"), text.size());
        joined += text.substr(0, lineEnd);
        text.remove_prefix(std::min(lineEnd + 1, text.size()));
    }
    return joined;
}

} // namespace

class CZrHbBrightrelayReply_Impl {
public:
    virtual ~CZrHbBrightrelayReply_Impl() = default;

    int Init(const CString& strMessage) {
        if (IsInitialized()) Cleanup();
        int start = strMessage.Find(kPreferredStart);
        if (start < 0) start = strMessage.Find(kSecondStart);
        if (start < 0)
            return Fail(CString("Cannot find tag ") + kPreferredStart + " or " + kSecondStart +
                        " in the message to parse!");
        const int end = strMessage.Find(kEnd, start);
        if (end < 0)
            return Fail(CString("Cannot find end-tag ") + kEnd + " in the message to parse!");
        const int length = end + CString(kEnd).GetLength() - start;
        m_reply = CString(WithoutLineEnds(strMessage.View().substr(
            static_cast<std::size_t>(start), static_cast<std::size_t>(length))));
        return 1;
    }

    void Cleanup() {
        m_reply.reset();
        m_lastError.Empty();
        m_lastErrorCode = kNoError;
    }

    bool IsInitialized() const { return m_reply.has_value(); }

    CString Reply() { return CheckInitialized() ? *m_reply : CString(); }

    CString Value(const CString& strName, CZrHbBrightrelayReply::EZrHbTagType eType) {
        if (!CheckInitialized() || strName.IsEmpty()) return CString();
        CString key = strName;
        if (key.Right(1) != "=") key += '=';
        const char* end = " ";
        if (eType == CZrHbBrightrelayReply::eTagType_Quoted) {
            key += '"';
            end = "\" ";
        }
        const int found = m_reply->Find(key);
        if (found < 0) return CString();
        // The end may stand in the key itself, whose own text is never part of a value.
        const int valueEnd = m_reply->Find(end, found);
        if (valueEnd < 0) return CString();
        const int valueBegin = found + key.GetLength();
        return m_reply->Mid(valueBegin, valueEnd - valueBegin);
    }

    int LastError(CString& strErr) const {
        strErr = m_lastError;
        return m_lastErrorCode;
    }

private:
    int Fail(const CString& strText) {
        m_lastError = strText;
        m_lastErrorCode = kFailed;
        return 0;
    }
    bool CheckInitialized() {
        if (!IsInitialized()) Fail("Object is not initialized. Please use Init() first.");
        return IsInitialized();
    }

    std::optional<CString> m_reply; // the comment, without its line ends
    CString m_lastError;
    int m_lastErrorCode = kNoError;
};

CZrHbBrightrelayReply::CZrHbBrightrelayReply() {
    CreateImpl(std::make_unique<CZrHbBrightrelayReply_Impl>());
}

CZrHbBrightrelayReply::CZrHbBrightrelayReply(const CZrHbBrightrelayReply& other) {
    CreateCopy(other);
}

CZrHbBrightrelayReply& CZrHbBrightrelayReply::operator=(const CZrHbBrightrelayReply& other) {
    AssignCopy(other);
    return *this;
}

CZrHbBrightrelayReply::~CZrHbBrightrelayReply() {
    DeleteImpl();
}

void CZrHbBrightrelayReply::DestroyImpl(CZrHbBrightrelayReply_Impl* pImpl) {
    std::default_delete<CZrHbBrightrelayReply_Impl>()(pImpl);
}

int CZrHbBrightrelayReply::Init(const CString& strMessage) {
    return GetImpl() ? GetImpl()->Init(strMessage) : 0;
}

void CZrHbBrightrelayReply::Cleanup() {
    if (GetImpl()) GetImpl()->Cleanup();
}

int CZrHbBrightrelayReply::IsObjectInitialized() const {
    return GetImpl() && GetImpl()->IsInitialized() ? 1 : 0;
}

CString CZrHbBrightrelayReply::GetBrightrelayReply() {
    return GetImpl() ? GetImpl()->Reply() : CString();
}

CString CZrHbBrightrelayReply::GetValue(const CString& strName, EZrHbTagType eType) {
    return GetImpl() ? GetImpl()->Value(strName, eType) : CString();
}

CString CZrHbBrightrelayReply::GetStatusValue() {
    return GetValue("STATUS", eTagType_Plain);
}

int CZrHbBrightrelayReply::IsStatusOkay() {
    return GetStatusValue().CompareNoCase("0") == 0 ? 1 : 0;
}

int CZrHbBrightrelayReply::GetLastParserError(CString& strErr) const {
    strErr.Empty();
    return GetImpl() ? GetImpl()->LastError(strErr) : 0;
}
