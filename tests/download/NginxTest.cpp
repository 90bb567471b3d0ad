// Downloads from nginx, over HTTP and HTTPS.
#include <cstring>
#include <deque>
#include <fstream>
#include <functional>
#include <vector>

#include <ZrHbInet.h>
#include <gmock/gmock.h>
#include <platform/Prompt.h>

#include "BenchServer.h"
#include "support/Certificates.h"
#include "support/TemporaryHome.h"

using namespace test_support;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

namespace {

constexpr std::uintmax_t kMiB = 1024 * 1024;
// What the sanitizers slow down is no less true of a smaller file.
#ifdef NDEBUG
constexpr std::uintmax_t kLargeFile = 1024 * kMiB;
#else
constexpr std::uintmax_t kLargeFile = 64 * kMiB;
#endif

class PasswordPrompt final : public platform::Prompt {
public:
    std::deque<CString> passwords;
    int questions = 0;

    int Ask(const CString&, UINT) override { return IDCANCEL; }
    bool AskCredentials(const CString&, CString& strName, CString& strPassword,
                        const std::function<bool()>&) override {
        ++questions;
        if (passwords.empty()) return false;
        strName = "kunde";
        strPassword = passwords.front();
        passwords.pop_front();
        return true;
    }

private:
    platform::ScopedService<platform::Prompt> m_installed{*this};
};

// The most memory that this process has had, since the last reset.
std::size_t PeakKiB() {
    std::ifstream status("/proc/self/status");
    for (std::string line; std::getline(status, line);)
        if (line.starts_with("VmHWM:")) return std::stoul(line.substr(6));
    return 0;
}
void ResetPeak() {
    EXPECT_TRUE(std::ofstream("/proc/self/clear_refs") << 5);
}

// Each block of the file begins with its number.
void WriteLargeFile(const std::string& name) {
    std::ofstream file(name, std::ios::binary);
    std::vector<char> block(kMiB, 'x');
    for (std::uintmax_t index = 0; index < kLargeFile / kMiB; ++index) {
        std::memcpy(block.data(), &index, sizeof index);
        file.write(block.data(), static_cast<std::streamsize>(block.size()));
    }
}

bool AreEqual(const std::string& first, const std::string& second) {
    std::ifstream one(first, std::ios::binary);
    std::ifstream other(second, std::ios::binary);
    std::vector<char> left(kMiB);
    std::vector<char> right(kMiB);
    for (;;) {
        const auto count = one.read(left.data(), kMiB).gcount();
        if (other.read(right.data(), kMiB).gcount() != count) return false;
        if (count == 0) return true;
        if (std::memcmp(left.data(), right.data(), static_cast<std::size_t>(count)) != 0)
            return false;
    }
}

class Nginx : public testing::Test {
protected:
    Nginx() {
        m_home.WriteFile("authority.pem", m_authority.Pem());
        m_trust.emplace("ZRHTTP_CA_FILE", m_home.Path("authority.pem").c_str());
        m_home.WriteFile("users", "kunde:{PLAIN}right\n");
        std::filesystem::permissions(m_home.Path(), std::filesystem::perms(0755));
        m_server.emplace(
            BenchServer::Setup{"a page",
                               "location /zipped/ { gzip on; gzip_types *; gzip_min_length 1; }\n"
                               "location /chunked/ { ssi on; ssi_types *; }\n"
                               "location /old { return 301 $scheme://$http_host/page; }\n"
                               "location /guarded/ { auth_basic Bank; auth_basic_user_file " +
                                   m_home.Path("users") + "; }\n",
                               m_authority.Issue({"IP:127.0.0.1"}).PemWithKey()});
        for (const char* directory : {"/zipped", "/chunked", "/guarded"})
            std::filesystem::create_directory(m_server->File(directory));
    }
    void Put(const std::string& path, const std::string& content) {
        std::ofstream(m_server->File(path), std::ios::binary) << content;
    }
    std::string Target() const { return m_home.Path("target"); }
    int Download(const std::string& url) {
        return CZrHbInet().DownloadFile(url.c_str(), Target().c_str());
    }
    // What either protocol brings, which must be the same; with a word for what has not worked.
    std::string Fetch(const std::string& path) {
        const bool isThere = Download(m_server->Url(path)) == TRUE;
        const auto plain = m_home.ReadFile("target");
        const bool isThereToo = Download(m_server->SecureUrl(path)) == TRUE;
        if (!isThere || !isThereToo) return "(failed)";
        return plain == m_home.ReadFile("target") ? *plain : "(HTTPS brings something else)";
    }
    std::string Log() const { return m_home.ReadFile("log/zrhttpbase3.log").value_or(""); }

    TemporaryHome m_home;
    const Certificate m_authority = Certificate::Authority();
    std::optional<ScopedVariable> m_trust;
    std::optional<BenchServer> m_server;
};

} // namespace

TEST_F(Nginx, FilesArriveAsTheyAre) {
    std::string long_text;
    for (int line = 0; line < 20'000; ++line)
        long_text += "Zeile " + std::to_string(line) + "\r\n";
    Put("/empty", "");
    Put("/byte", std::string(1, '\0'));
    Put("/zipped/text", long_text);
    Put("/chunked/text", long_text);
    EXPECT_EQ(Fetch("/empty"), "");
    EXPECT_EQ(Fetch("/byte"), std::string(1, '\0'));
    EXPECT_EQ(Fetch("/old"), "a page");
    EXPECT_EQ(Fetch("/zipped/text"), long_text);
    EXPECT_EQ(Fetch("/chunked/text"), long_text);
    EXPECT_THAT(Log(), Not(HasSubstr("Failed")));
    EXPECT_THAT(Fetch("/missing"), HasSubstr("<h1>404 Not Found</h1>"));
    EXPECT_THAT(Log(), HasSubstr("Failed to retrieve a HTTP 200 status, Status Code:404"));
}

TEST_F(Nginx, ALargeFileTakesNoMoreMemoryThanASmallOne) {
    const std::string source = m_server->File("/large");
    WriteLargeFile(source);
    EXPECT_EQ(Fetch("/page"), "a page");
    for (const std::string& url : {m_server->Url("/large"), m_server->SecureUrl("/large")}) {
        ResetPeak();
        const std::size_t before = PeakKiB();
        EXPECT_EQ(Download(url), TRUE);
#ifdef NDEBUG // the sanitizers keep memory that has been freed
        EXPECT_LT(PeakKiB(), before + 4 * 1024);
#else
        EXPECT_GT(PeakKiB(), before / 2);
#endif
        EXPECT_TRUE(AreEqual(Target(), source)) << url;
    }
}

TEST_F(Nginx, LetsInWhoeverHasThePassword) {
    Put("/guarded/list", "inside");
    const std::string url = m_server->SecureUrl("/guarded/list");
    PasswordPrompt prompt;
    prompt.passwords = {"wrong", "right"};
    EXPECT_EQ(Download(url), TRUE);
    EXPECT_EQ(m_home.ReadFile("target"), "inside");
    EXPECT_EQ(prompt.questions, 2);

    EXPECT_EQ(Download(url), FALSE) << "nothing is left of the refusal's page";
    EXPECT_EQ(m_home.ReadFile("target"), "");
    EXPECT_EQ(prompt.questions, 3);
    EXPECT_THAT(Log(), Not(HasSubstr("wrong")));
}

TEST_F(Nginx, MustBeTrusted) {
    m_trust.emplace("ZRHTTP_CA_FILE", "");
    EXPECT_EQ(Download(m_server->SecureUrl("/page")), FALSE);
    EXPECT_EQ(m_home.ReadFile("target"), std::nullopt);
    EXPECT_THAT(Log(),
                HasSubstr("with error 12045\\nInternetGetLastResponseInfo(): Error = 12045"));
}
