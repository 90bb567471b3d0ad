#include "contract/ChromiumPages.h"

#include <filesystem>
#include <fstream>
#include <iterator>

#include <unistd.h>

#include "support/PumpUntil.h"

namespace test_support {
namespace {

constexpr DWORD kNoTimeout = 0;

std::string ContentOf(const std::string& fileName) {
    std::ifstream file(fileName, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

pid_t ParentOf(pid_t process) {
    const std::string status = ContentOf("/proc/" + std::to_string(process) + "/stat");
    const std::size_t nameEnd = status.rfind(") ");
    return nameEnd == std::string::npos ? 0 : std::atoi(status.c_str() + nameEnd + 4);
}

bool IsOurs(pid_t process) {
    while (process > 1 && process != ::getpid())
        process = ParentOf(process);
    return process == ::getpid();
}

bool IsBrowser(pid_t process) {
    const std::string line = ContentOf("/proc/" + std::to_string(process) + "/cmdline");
    return line.find("--user-data-dir=/") != std::string::npos &&
           line.find("/zrhttp-chromium-") != std::string::npos &&
           line.find("--type=") == std::string::npos && !line.starts_with("/bin/sh");
}

} // namespace

void ChromiumPages::SetUpTestSuite() {
    s_shared = std::make_unique<Shared>();
    s_shared->home.WriteFile("trusted.pem", s_shared->authority.Pem() + s_shared->expired.Pem());
    s_shared->certificates.emplace("ZRHTTP_CA_FILE", s_shared->home.Path("trusted.pem").c_str());
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
    std::vector<pid_t> found;
    std::error_code error;
    for (const auto& entry : std::filesystem::directory_iterator("/proc", error))
        if (const pid_t process = std::atoi(entry.path().filename().c_str());
            process > 0 && IsBrowser(process) && IsOurs(process))
            found.push_back(process);
    return found;
}

} // namespace test_support
