// The record of requests and of the pages they returned.
#pragma once

#include <mutex>

#include <platform/String.h>

struct TrafficRequest {
    CString strUrl;
    CString strPostText;
    CString strOriginalPostText; // before a rule answered
    CString strHeaders;
};

// One request at a time waits for its result. Safe on any thread: requests of several threads
// replace one another, and each result is written once.
class TrafficRecord {
public:
    // The request that waits gets no result.
    void Drop();
    // Records the request in a section of its own; it waits for its result from now on.
    void Begin(const TrafficRequest& request);
    // The result of the request that waits; nothing without one, and nothing while the page is
    // not finished (codes 10 and 11).
    void End(DWORD nCode, const CString& page, const CString& strErr);

private:
    CString NewSectionName();

    std::mutex m_mutex;
    CString m_section; // empty when no request waits
    long long m_lastTick = -1;
};
