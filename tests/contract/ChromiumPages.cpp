#include "contract/ChromiumPages.h"

#include <map>

#include <unistd.h>

#include "support/Processes.h"
#include "support/PumpUntil.h"

namespace test_support {
namespace {

constexpr DWORD kNoTimeout = 0;

bool IsBrowser(const Process& process) {
    return process.HasInCommandLine("--user-data-dir=/") &&
           process.HasInCommandLine("/zrhttp-profile-") && !process.HasInCommandLine("--type=") &&
           !process.commandLine.starts_with("/bin/sh");
}

} // namespace

void ChromiumPages::SetUpTestSuite() {
    s_shared = std::make_unique<Shared>();
    s_shared->getter.SetSecurityTimeout(0);
    CString error;
    ASSERT_EQ(s_shared->getter.ConnectV2(nullptr, error, CZrHbUHttpGet::eVisible,
                                         CZrHbUHttpGet::eConnectWith_InternetExplorer, 0, ""),
              ZRHB_OK)
        << error.GetString();
}

DWORD ChromiumPages::Connect() {
    return Getter().ConnectV2(nullptr, m_error, CZrHbUHttpGet::eVisible,
                              CZrHbUHttpGet::eConnectWith_InternetExplorer, 0, "");
}

DWORD ChromiumPages::Post(const std::string& url, const std::string& data, const char* pszHeaders) {
    std::string copy = data;
    return Getter().Open(CString(url), m_error, copy.data(), static_cast<DWORD>(copy.size()),
                         pszHeaders, FALSE);
}

DWORD ChromiumPages::Read() {
    CByteBuffer page(4096, 4096);
    const DWORD code =
        Getter().BusyRead(page, m_error, m_url, 30'000, FALSE, kNoTimeout, nullptr, nullptr);
    m_bytes.assign(page.GetData(), page.GetData() + page.GetSize());
    return code;
}

std::string ChromiumPages::Fetch(const std::string& url) {
    EXPECT_EQ(Open(url), ZRHB_OK) << url << " " << m_error.GetString();
    EXPECT_EQ(Read(), ZRHB_OK) << url << " " << m_error.GetString();
    return m_bytes;
}

std::vector<std::string> ChromiumPages::Collect(const std::string& url, std::size_t count) {
    EXPECT_EQ(Open(url, TRUE), ZRHB_OK) << m_error.GetString();
    std::vector<std::string> documents;
    const auto step = [&] {
        DWORD nLength = 0;
        const DWORD code = Getter().TestRead(m_text, m_error, nLength, m_url, 0, FALSE);
        if (code == ZRHB_OK) documents.emplace_back((m_url + " " + m_text).View());
        return code;
    };
    PumpUntil([&] { return step() == ZRHB_LOADED_IDLE && documents.size() >= count; },
              "the documents of the page");
    PumpFor(std::chrono::milliseconds(100));
    EXPECT_EQ(step(), ZRHB_LOADED_IDLE) << m_error.GetString();
    Getter().Close();
    return documents;
}

std::string ChromiumPages::StatusText() {
    CComBSTR text;
    EXPECT_EQ(S_OK, Getter().Get_IWebBrowser2_ptr()->get_StatusText(&text));
    return std::string(text.ToAnsi().View());
}

std::vector<pid_t> RunningChromiums() {
    const std::vector<Process> all = AllProcesses();
    std::map<pid_t, pid_t> parents;
    for (const Process& process : all)
        parents[process.id] = process.parent;
    const auto isOurs = [&](pid_t process) {
        while (process > 1 && process != ::getpid())
            process = parents[process];
        return process == ::getpid();
    };
    std::vector<pid_t> found;
    for (const Process& process : all)
        if (IsBrowser(process) && isOurs(process.id)) found.push_back(process.id);
    return found;
}

} // namespace test_support
