// An internet whose replies a test writes down, and where any call can be made to fail.
#pragma once

#include <algorithm>
#include <cstring>
#include <functional>
#include <map>
#include <mutex>
#include <set>
#include <string>
#include <vector>

#include <platform/Internet.h>
#include <platform/LastError.h>

namespace test_support {

// One reply for all requests. Notes the calls, as "Open", "OpenUrl", ... Any thread.
class ScriptedInternet final : public platform::Internet {
public:
    std::string status = "200";
    std::string body;
    DWORD contentLength = 0; // 0: not told
    std::size_t largestRead = 1'000'000;
    bool breaksOff = false; // behind the body
    bool isOffline = false;
    bool isConnected = true;
    std::vector<DWORD> dialogAnswers; // then ERROR_CANCELLED
    std::set<std::string> failing;    // calls that fail
    std::function<void(const std::string& call)> onCall;

    std::vector<std::string> Calls() const {
        const std::lock_guard lock(m_lock);
        return m_calls;
    }
    // Handles that were never closed.
    std::size_t OpenHandles() const {
        const std::lock_guard lock(m_lock);
        return m_handles.size();
    }

    HINTERNET Open(const CString&) override { return NewHandle("Open"); }
    HINTERNET OpenUrl(HINTERNET, const CString&) override { return NewHandle("OpenUrl"); }
    BOOL QueryInfo(HINTERNET, DWORD dwInfo, void* pBuffer, DWORD* pLength) override {
        if (dwInfo == HTTP_QUERY_STATUS_CODE) {
            if (!Note("QueryStatus")) return FALSE;
            std::memcpy(pBuffer, status.c_str(), status.size() + 1);
            return TRUE;
        }
        if (!Note("QueryLength") || contentLength == 0) return FALSE;
        std::memcpy(pBuffer, &contentLength, *pLength);
        return TRUE;
    }
    BOOL Read(HINTERNET hRequest, void* pBuffer, DWORD nCount, DWORD* pRead) override {
        if (!Note("Read")) return FALSE;
        const std::lock_guard lock(m_lock);
        std::size_t& position = m_handles.at(hRequest);
        const std::size_t count =
            std::min({static_cast<std::size_t>(nCount), body.size() - position, largestRead});
        body.copy(static_cast<char*>(pBuffer), count, position);
        position += count;
        *pRead = static_cast<DWORD>(count);
        return count == 0 && breaksOff ? FALSE : TRUE;
    }
    BOOL Close(HINTERNET hInternet) override {
        Note("Close");
        const std::lock_guard lock(m_lock);
        return m_handles.erase(hInternet) == 1 ? TRUE : FALSE;
    }
    DWORD ErrorDialog(HWND, HINTERNET, DWORD) override {
        Note("ErrorDialog");
        if (dialogAnswers.empty()) return ERROR_CANCELLED;
        const DWORD answer = dialogAnswers.front();
        dialogAnswers.erase(dialogAnswers.begin());
        status = "200";
        return answer;
    }
    BOOL GetConnectedState(DWORD* pFlags) override {
        Note("GetConnectedState");
        *pFlags = isOffline ? INTERNET_CONNECTION_OFFLINE : 0;
        return isConnected;
    }
    BOOL GoOnline(const CString&) override {
        isOffline = false;
        return Note("GoOnline");
    }
    BOOL SetOption(HINTERNET, DWORD, const void*, DWORD) override { return FALSE; }

private:
    HINTERNET NewHandle(const char* pszCall) {
        if (!Note(pszCall)) return nullptr;
        const std::lock_guard lock(m_lock);
        const HINTERNET handle = reinterpret_cast<HINTERNET>(++m_lastHandle);
        m_handles[handle] = 0;
        return handle;
    }
    BOOL Note(const std::string& call) {
        if (onCall) onCall(call);
        {
            const std::lock_guard lock(m_lock);
            // Reads follow each other by the thousand.
            if (m_calls.empty() || m_calls.back() != call) m_calls.push_back(call);
        }
        if (!failing.contains(call)) return TRUE;
        SetLastError(ERROR_INTERNET_CANNOT_CONNECT);
        return FALSE;
    }

    mutable std::mutex m_lock;
    std::vector<std::string> m_calls;
    std::map<HINTERNET, std::size_t> m_handles; // how much each has read
    std::uintptr_t m_lastHandle = 0;
};

} // namespace test_support
