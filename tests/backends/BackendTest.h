// A back-end in the hands of a test.
#pragma once

#include <string>

#include <gtest/gtest.h>

#include "backends/ZrHbHttpGet.h"

namespace test_support {

class BackendTest : public testing::Test {
protected:
    virtual CZrHbHttpGet& Backend() = 0;

    void Connect(HWND parent = nullptr) { ASSERT_EQ(Backend().Connect(parent, strErr), 0u); }
    DWORD Open(BOOL bKeepPageOpen = FALSE) {
        return Backend().Open("http://h/", strErr, nullptr, 0, nullptr, bKeepPageOpen);
    }
    // "0: PAGE of URL", else the code with its text, and the length of the source if there is some.
    std::string Read() { return Told(Backend().Read(page, strErr, nLength, strUrl)); }
    std::string ReadBytes() {
        CByteBuffer bytes(1024, 256);
        const DWORD result = Backend().Read(bytes, strErr, nLength, strUrl);
        page = bytes.GetString();
        return Told(result);
    }

    CString page;
    CString strErr = "old";
    CString strUrl;
    DWORD nLength = 99;

private:
    std::string Told(DWORD result) const {
        if (result == 0) {
            EXPECT_EQ(strErr, "");
            EXPECT_EQ(nLength, static_cast<DWORD>(page.GetLength()));
            return std::string(("0: " + page + " of " + strUrl).View());
        }
        const std::string length = nLength ? " (" + std::to_string(nLength) + " bytes)" : "";
        return std::to_string(result) + ": " + strErr.GetString() + length;
    }
};

constexpr const char* kLoading = "10: Read has not completed yet.";
constexpr const char* kIdle = "11: Loading done - now idle.";
constexpr const char* kReadFailed = "22: Read failed.";
constexpr const char* kNoDocument = "22: Reading failed. (GetDocument failed.)";
constexpr const char* kOffline = "22: Reading failed because browser is offline.";
constexpr const char* kInNewWindow =
    "22: Reading failed (because after OpenInNewWindow() you cannot read the page).";
constexpr const char* kNotOpen =
    "25: Read: No previous Connect() and Open() or already Disconnected.";
constexpr const char* kLost = "27: Read failed because: Connection got lost.";

} // namespace test_support
