// Points in time and spans, in whole seconds.
#pragma once

#include <compare>
#include <cstdint>

#include "Export.h"
#include "String.h"

ZRHB_EXPORT_BEGIN

class CTimeSpan {
public:
    CTimeSpan() = default;
    explicit CTimeSpan(std::int64_t nSeconds) : m_seconds(nSeconds) {}
    std::int64_t GetTotalSeconds() const { return m_seconds; }
    friend auto operator<=>(const CTimeSpan&, const CTimeSpan&) = default;

private:
    std::int64_t m_seconds = 0;
};

class CTime {
public:
    CTime() = default;
    explicit CTime(std::int64_t nSecondsSince1970) : m_seconds(nSecondsSince1970) {}
    // Now, by the installed clock (Clock.h).
    static CTime GetCurrentTime();
    // strftime formatting in UTC.
    CString FormatGmt(const char* pszFormat) const;

    friend CTime operator+(CTime a, CTimeSpan b) {
        return CTime(a.m_seconds + b.GetTotalSeconds());
    }
    friend CTimeSpan operator-(CTime a, CTime b) { return CTimeSpan(a.m_seconds - b.m_seconds); }
    friend auto operator<=>(const CTime&, const CTime&) = default;

private:
    std::int64_t m_seconds = 0;
};

ZRHB_EXPORT_END
