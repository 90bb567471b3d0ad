#include <platform/Time.h>

#include <ctime>
#include <iomanip>
#include <locale>
#include <sstream>

#include <platform/Clock.h>

CTime CTime::GetCurrentTime() {
    return CTime(platform::Current<platform::Clock>().Now());
}

CString CTime::FormatGmt(const char* pszFormat) const {
    const std::time_t seconds = m_seconds;
    std::tm parts = {};
    if (!::gmtime_r(&seconds, &parts)) return CString();
    std::ostringstream text;
    text.imbue(std::locale::classic());
    text << std::put_time(&parts, pszFormat);
    return CString(text.view());
}
