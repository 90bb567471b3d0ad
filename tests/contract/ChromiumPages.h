// One getter on one Chromium application, shared by all tests of a suite.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <sys/types.h>

#include <ZrHbUHttpGet.h>

#include "support/TemporaryHome.h"
#include "support/TestServer.h"

namespace test_support {

class ChromiumPages : public testing::Test {
protected:
    static void SetUpTestSuite();
    static void TearDownTestSuite() { s_shared.reset(); }

    CZrHbUHttpGet& Getter() { return s_shared->getter; }
    TestServer& Server() { return s_shared->server; }

    DWORD Connect();
    DWORD Open(const std::string& url, BOOL bKeepPageOpen = FALSE) {
        return Getter().Open(CString(url), m_error, bKeepPageOpen);
    }
    DWORD Post(const std::string& url, const std::string& data, const char* pszHeaders = nullptr);
    // Waits for the bytes of a page.
    DWORD Read();
    // The bytes of a page that loads.
    std::string Fetch(const std::string& url);
    std::string FetchPath(const std::string& path) { return Fetch(Server().Url(path)); }
    // Opens a page and takes that many documents, as "URL source"; fails when there are more.
    std::vector<std::string> Collect(const std::string& url, std::size_t count);
    std::string StatusText();

    std::string m_bytes;
    CString m_text;
    CString m_error;
    CString m_url;

private:
    struct Shared {
        TemporaryHome home;
        ScopedVariable engine{"ZRHTTP_APPLICATION", "chromium"};
        ScopedVariable headless{"ZRHTTP_HEADLESS", "1"};
        ScopedVariable system{"ZRHTTP_LEGACY_SYSTEM", "1"}; // where pages open out of process
        TestServer server;
        CZrHbUHttpGet getter{eAppGroup_2};
    };
    static inline std::unique_ptr<Shared> s_shared;
};

// The browsers, not their helpers, that descend from this process.
std::vector<pid_t> RunningChromiums();

} // namespace test_support
