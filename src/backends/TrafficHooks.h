// Where a back-end lets its requests and their results pass by, for simulation and recording.
#pragma once

#include <platform/String.h>

class TrafficHooks {
public:
    virtual ~TrafficHooks() = default;

    // Before a navigation. May replace what it is given by what is to be navigated with; texts
    // that it puts in place stay valid until the next call.
    virtual void PrepareRequest(CString& strUrl, const void*& pPostData, DWORD& nPostLen,
                                const char*& pszHeaders) = 0;
    // After a read of the live document.
    virtual void RecordResult(DWORD nCode, const CString& page, const CString& strErr) = 0;
};
