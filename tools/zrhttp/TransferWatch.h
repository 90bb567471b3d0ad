// What a download's server has answered.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include <platform/Internet.h>

namespace zrhttp {

// Of the last request of a download.
struct TransferFacts {
    std::optional<int> status;           // none: there is no reply
    std::optional<std::uint64_t> length; // of the body, when the reply tells it
    std::uint64_t received = 0;          // bytes of the body
    bool hasEnded = false;               // there is nothing more to read, however that came
    unsigned error = 0;                  // of the opening or the reading that failed
    std::string reason;                  // its own words; UTF-8

    bool IsErrorPage() const;
    bool WantsCredentials() const;
    // No reply, because no connection came about or it did not last.
    bool IsConnectionFailure() const;
};

// Stands between the library's downloads and the internet functions while it lives, for one
// download at a time. An error page that is not wanted is not read.
class TransferWatch final : public platform::Internet {
public:
    explicit TransferWatch(bool isErrorPageWanted) : m_isErrorPageWanted(isErrorPageWanted) {}

    // When the download is over.
    const TransferFacts& Facts() const { return m_facts; }

    HINTERNET Open(const CString& strAgent) override;
    HINTERNET OpenUrl(HINTERNET hSession, const CString& strUrl) override;
    BOOL QueryInfo(HINTERNET hRequest, DWORD dwInfo, void* pBuffer, DWORD* pLength) override;
    BOOL Read(HINTERNET hRequest, void* pBuffer, DWORD nCount, DWORD* pRead) override;
    BOOL Close(HINTERNET hInternet) override;
    DWORD ErrorDialog(HWND hWndParent, HINTERNET hRequest, DWORD dwError) override;
    BOOL GetConnectedState(DWORD* pFlags) override;
    BOOL GoOnline(const CString& strUrl) override;
    BOOL SetOption(HINTERNET hInternet, DWORD dwOption, const void* pBuffer,
                   DWORD nLength) override;

private:
    void TakeHead(HINTERNET hRequest);
    void TakeFailure();

    const bool m_isErrorPageWanted;
    TransferFacts m_facts; // the downloading thread's
    platform::Internet& m_real = platform::Internet::Real();
    const platform::ScopedService<platform::Internet> m_installed{*this};
};

} // namespace zrhttp
