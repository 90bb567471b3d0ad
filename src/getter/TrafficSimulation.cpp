#include "getter/TrafficSimulation.h"

#include <string_view>

#include <platform/Prompt.h>

#include "getter/TrafficFiles.h"
#include "getter/TrafficRecord.h"
#include "getter/TrafficRules.h"

namespace {

constexpr const char* kSimulatePrefix = "SIM:";
constexpr const char* kSavePrefix = "SAVE:";
constexpr const char* kQuestion =
    "HttpGetSimulate: No rule found for simulating this page:\n\nURL=%s\nPostData=%s\n\n"
    "Press Yes : use the actual URL and SAVE the page.\nPress No  : fail this request.\n"
    "Press Cancel : retry to find a rule!";

bool RemovePrefix(CString& strUrl, std::string_view prefix) {
    if (!strUrl.View().starts_with(prefix)) return false;
    strUrl = strUrl.Mid(static_cast<int>(prefix.size()));
    return true;
}

int AskWhatToDo(const CString& strUrl, const CString& strPostText) {
    CString question;
    question.Format(kQuestion, strUrl.GetString(), strPostText.GetString());
    return AfxMessageBox(question, MB_YESNOCANCEL | MB_DEFBUTTON2);
}

// A local path, named after the URL, where there is no page.
CString PathThatFails(const CString& strUrl) {
    CString path = strUrl;
    path.Replace(":", "_");
    path.Replace("/", "\\");
    path.Replace("\\\\", "\\");
    return CString(TrafficFiles::kDirectory) + "\\" + path;
}

class SimulatedTraffic final : public TrafficHooks {
public:
    void PrepareRequest(CString& strUrl, const void*& pPostData, DWORD& nPostLen,
                        const char*& pszHeaders) override {
        PrepareRequestForTraffic(strUrl, pPostData, nPostLen, pszHeaders);
    }
    void RecordResult(DWORD nCode, const CString& page, const CString& strErr) override {
        m_record.End(nCode, page, strErr);
    }

private:
    void PrepareRequestForTraffic(CString& strUrl, const void*& pPostData, DWORD nPostLen,
                                  const char* pszHeaders);
    static void SimulateRequest(CString& strUrl, const void*& pPostData, DWORD nPostLen);
    void RecordRequest(CString& strUrl, const CString& strPostText, const CString& strOriginal,
                       const char* pszHeaders);

    TrafficRecord m_record;
};

void SimulatedTraffic::PrepareRequestForTraffic(CString& strUrl, const void*& pPostData,
                                                DWORD nPostLen, const char* pszHeaders) {
    m_record.Drop();
    const void* const pOriginal = pPostData;
    if (strUrl.View().starts_with(kSimulatePrefix)) SimulateRequest(strUrl, pPostData, nPostLen);
    if (strUrl.View().starts_with(kSavePrefix))
        RecordRequest(strUrl, TrafficFiles::PostText(pPostData, nPostLen),
                      TrafficFiles::PostText(pOriginal, nPostLen), pszHeaders);
}

// The user may write the rule that is missing while the question stands. A question that could not
// be put (answer 0) must not be put for ever: it counts as No.
void SimulatedTraffic::SimulateRequest(CString& strUrl, const void*& pPostData, DWORD nPostLen) {
    RemovePrefix(strUrl, kSimulatePrefix);
    const bool isToBeSaved = RemovePrefix(strUrl, kSavePrefix);
    const CString strPostText = TrafficFiles::PostText(pPostData, nPostLen);
    for (;;) {
        if (const auto page = TrafficRules::FindPage(strUrl, strPostText)) {
            strUrl = isToBeSaved ? kSavePrefix + *page : *page;
            pPostData = nullptr;
            return;
        }
        TrafficRules::WriteUnanswered(strUrl, strPostText);
        switch (AskWhatToDo(strUrl, strPostText)) {
        case IDYES:
            strUrl = kSavePrefix + strUrl;
            return;
        case IDNO:
        case 0:
            strUrl = PathThatFails(strUrl);
            return;
        default:
            break;
        }
    }
}

void SimulatedTraffic::RecordRequest(CString& strUrl, const CString& strPostText,
                                     const CString& strOriginal, const char* pszHeaders) {
    RemovePrefix(strUrl, kSavePrefix);
    m_record.Begin({strUrl, strPostText, strOriginal, pszHeaders});
}

} // namespace

TrafficHooks& TrafficSimulation() {
    static SimulatedTraffic traffic;
    return traffic;
}
