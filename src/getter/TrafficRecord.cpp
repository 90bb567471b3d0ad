#include "getter/TrafficRecord.h"

#include <algorithm>
#include <chrono>
#include <utility>

#include <ZrHbResultCodes.h>
#include <platform/File.h>
#include <platform/IniFile.h>
#include <platform/Time.h>

#include "getter/TrafficFiles.h"

namespace {

constexpr const char* kPage = "_Page.html";
constexpr const char* kError = "_ErrMsg.txt";
const auto processStart = std::chrono::steady_clock::now();

CString ResultFile(const CString& strSection, const char* pszSuffix) {
    return CString(TrafficFiles::kDirectory) + "\\" + strSection + pszSuffix;
}

// By this process or another one.
bool IsTaken(const CString& strSection) {
    char value[2]; // begins with a brace
    GetPrivateProfileStringA(strSection, "URL", "", value, sizeof value, TrafficFiles::kRecord);
    return value[0] != '\0' || CFile::Exists(ResultFile(strSection, kPage));
}

void WriteValue(const CString& strSection, const char* pszKey, const CString& strText) {
    const CString value = "{" + TrafficFiles::OnOneLine(strText) + "}";
    WritePrivateProfileStringA(strSection, pszKey, value, TrafficFiles::kRecord);
}

void WriteRequest(const CString& strSection, const TrafficRequest& request) {
    WriteValue(strSection, "URL", request.strUrl);
    WriteValue(strSection, "PostData", request.strPostText);
    WriteValue(strSection, "OrigPostData_BeforeSim", request.strOriginalPostText);
    WriteValue(strSection, "HttpHeader", request.strHeaders);
}

} // namespace

void TrafficRecord::Drop() {
    const std::lock_guard lock(m_mutex);
    m_section.Empty();
}

// The tick counts the milliseconds of the process; two requests within one get different ones, and
// so do those of two processes.
CString TrafficRecord::NewSectionName() {
    using namespace std::chrono;
    const long long tick = duration_cast<milliseconds>(steady_clock::now() - processStart).count();
    m_lastTick = std::max(tick, m_lastTick + 1);
    const CString time = CTime::GetCurrentTime().FormatGmt("%Y.%d.%m %H.%M.%S ");
    for (CString name;; ++m_lastTick) {
        name.Format("%s%lld", time.GetString(), m_lastTick);
        if (!IsTaken(name)) return name;
    }
}

void TrafficRecord::Begin(const TrafficRequest& request) {
    platform::IniUpdate record(TrafficFiles::kRecord); // from choosing the name to writing it
    CString section;
    {
        const std::lock_guard lock(m_mutex);
        section = NewSectionName();
    }
    WriteRequest(section, request);
    record.Commit();
    const std::lock_guard lock(m_mutex);
    m_section = section;
}

void TrafficRecord::End(DWORD nCode, const CString& page, const CString& strErr) {
    if (nCode == ZRHB_STILL_LOADING || nCode == ZRHB_LOADED_IDLE) return;
    CString section;
    {
        const std::lock_guard lock(m_mutex);
        section = std::exchange(m_section, CString());
    }
    if (section.IsEmpty()) return;
    CString code;
    code.Format("%u", nCode);
    WritePrivateProfileStringA(section, "RetCode", code, TrafficFiles::kRecord);
    TrafficFiles::WriteTextFile(page, ResultFile(section, kPage));
    TrafficFiles::WriteTextFile(strErr, ResultFile(section, kError));
}
