#include "getter/TrafficRecord.h"

#include <algorithm>
#include <chrono>
#include <utility>

#include <ZrHbResultCodes.h>
#include <platform/IniFile.h>
#include <platform/Time.h>

#include "getter/TrafficFiles.h"

namespace {

const auto processStart = std::chrono::steady_clock::now();

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

// The tick counts the milliseconds of the process; two requests within one get different ones.
CString TrafficRecord::NewSectionName() {
    using namespace std::chrono;
    const long long tick = duration_cast<milliseconds>(steady_clock::now() - processStart).count();
    m_lastTick = std::max(tick, m_lastTick + 1);
    CString name;
    name.Format("%s%lld", CTime::GetCurrentTime().FormatGmt("%Y.%d.%m %H.%M.%S ").GetString(),
                m_lastTick);
    return name;
}

void TrafficRecord::Begin(const TrafficRequest& request) {
    CString section;
    {
        const std::lock_guard lock(m_mutex);
        section = NewSectionName();
    }
    WriteRequest(section, request);
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
    const CString files = CString(TrafficFiles::kDirectory) + "\\" + section;
    TrafficFiles::WriteTextFile(page, files + "_Page.html");
    TrafficFiles::WriteTextFile(strErr, files + "_ErrMsg.txt");
}
