#include "getter/TrafficRules.h"

#include <string>
#include <string_view>
#include <vector>

#include <platform/IniFile.h>

#include "getter/TrafficFiles.h"

namespace {

constexpr std::string_view kRulePrefix = "Rule";
constexpr const char* kUnanswered = "Failed-NoRuleFound";
constexpr const char* kNoValue = "\xA3"; // read for a key that is not there
constexpr DWORD kValueSize = 2000;       // longer values are cut to fit, with their NUL
constexpr DWORD kSectionNamesSize = 10'000;

CString ReadRule(const CString& strSection, const char* pszKey, const char* pszDefault = "") {
    char value[kValueSize];
    GetPrivateProfileStringA(strSection, pszKey, pszDefault, value, kValueSize,
                             TrafficFiles::kRules);
    return value;
}

// The list of parts ends at the first one that is missing or empty.
bool HasAllParts(const CString& strSection, const CString& strPostText) {
    CString key;
    for (int part = 0;; ++part) {
        key.Format("PostDataPart%d", part);
        const CString strPart = ReadRule(strSection, key);
        if (strPart.IsEmpty()) return true;
        if (strPostText.Find(strPart) < 0) return false;
    }
}

bool Answers(const CString& strSection, const CString& strUrl, const CString& strPostText) {
    if (!strSection.View().starts_with(kRulePrefix)) return false;
    if (ReadRule(strSection, "URL") != strUrl) return false;
    const CString strPostData = ReadRule(strSection, "PostData", kNoValue);
    if (strPostData != kNoValue) return strPostData == strPostText;
    return HasAllParts(strSection, strPostText);
}

void WriteRule(const char* pszKey, const CString& strValue) {
    WritePrivateProfileStringA(kUnanswered, pszKey, TrafficFiles::OnOneLine(strValue),
                               TrafficFiles::kRules);
}

} // namespace

namespace TrafficRules {

std::optional<CString> FindPage(const CString& strUrl, const CString& strPostText) {
    const platform::IniSnapshot oneLook(TrafficFiles::kRules);
    CStringArray sections;
    const int count = ReadSectionNames(sections, TrafficFiles::kRules);
    for (int index = 0; index < count; ++index)
        if (Answers(sections[index], strUrl, strPostText))
            return ReadRule(sections[index], "SimPage");
    return std::nullopt;
}

void WriteUnanswered(const CString& strUrl, const CString& strPostText) {
    CString strPostData = strPostText;
    strPostData.Replace("\n", "");
    platform::IniUpdate rules(TrafficFiles::kRules);
    WriteRule("URL", strUrl);
    WriteRule("PostData", strPostData);
    WriteRule("SimPage", CString(TrafficFiles::kDirectory) + "\\...");
    rules.Commit();
}

int ReadSectionNames(CStringArray& names, const char* pszFileName) {
    std::vector<char> buffer(kSectionNamesSize);
    const auto read = [&] {
        return GetPrivateProfileSectionNamesA(buffer.data(), static_cast<DWORD>(buffer.size()),
                                              pszFileName);
    };
    DWORD length = read();
    while (length + 2 >= buffer.size()) {
        buffer.resize(buffer.size() * 2);
        length = read();
    }
    names.RemoveAll();
    std::string_view left(buffer.data(), length);
    while (!left.empty()) {
        const CString name(left.data());
        names.Add(name);
        left.remove_prefix(name.View().size() + 1);
    }
    return names.GetSize();
}

} // namespace TrafficRules
