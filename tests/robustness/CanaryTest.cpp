// Known secrets in every place that takes one: they reach the server, and nothing else. Searched
// are all files that come into being, and the command lines of all processes.
#include <algorithm>
#include <cctype>
#include <filesystem>
#include <memory>

#include <gmock/gmock.h>

#include <ZrHbDataTransmit.h>
#include <ZrHbInet.h>
#include <ZrHbUHttpGet.h>
#include <platform/Prompt.h>

#include "support/Processes.h"
#include "support/RunTool.h"
#include "support/TemporaryHome.h"
#include "support/TestServer.h"

using namespace test_support;
using testing::HasSubstr;
using testing::IsEmpty;

namespace {

// Each with letters that look different in a URL and in base64.
const std::string kPassword = "pass-Kanarie/1?+";
const std::string kPin = "pin-Kanarie 2&";
const std::string kCookie = "cookie-Kanarie-3~";
const std::string kField = "feld-Kanarie=4%";

std::string Percent(const std::string& text) {
    std::string encoded;
    for (const char letter : text) {
        char code[4];
        std::snprintf(code, sizeof code, "%%%02X", static_cast<unsigned char>(letter));
        encoded += code;
    }
    return encoded;
}

// Decoded as a form's value, whatever was encoded in it and however.
std::string PercentDecoded(const std::string& text) {
    std::string decoded;
    for (std::size_t at = 0; at < text.size(); ++at) {
        const std::string digits = text[at] == '%' ? text.substr(at + 1, 2) : "";
        const bool isCode = digits.size() == 2 && std::ranges::all_of(digits, [](char digit) {
                                return std::isxdigit(static_cast<unsigned char>(digit)) != 0;
                            });
        if (isCode) at += 2;
        decoded += isCode            ? static_cast<char>(std::stoi(digits, nullptr, 16))
                   : text[at] == '+' ? ' '
                                     : text[at];
    }
    return decoded;
}

std::string Base64(const std::string& bytes) {
    constexpr const char* digits =
        "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    std::string encoded;
    unsigned bits = 0;
    int count = 0;
    for (const char byte : bytes) {
        bits = bits << 8 | static_cast<unsigned char>(byte);
        for (count += 8; count >= 6; count -= 6)
            encoded += digits[bits >> (count - 6) & 63];
    }
    return encoded; // without what the next byte would change
}

// The part of a text's base64 form that does not depend on what stands around the text; there are
// three, depending on where it begins.
std::string Base64Core(const std::string& text, std::size_t offset) {
    return Base64(std::string(offset, 'x') + text).substr((offset * 8 + 5) / 6);
}

// The secrets that a text holds, as they are, percent-encoded (once or twice) or in base64.
std::vector<std::string> Canaries(const std::string& text) {
    const std::string decoded = PercentDecoded(text);
    const bool isTwice = decoded != text && decoded.find('%') != decoded.npos;
    const std::string forms[] = {text, decoded, isTwice ? PercentDecoded(decoded) : ""};
    const auto isInside = [&](const std::string& secret) {
        return std::ranges::any_of(
            forms, [&](const std::string& form) { return form.find(secret) != form.npos; });
    };
    std::vector<std::string> found;
    for (const std::string& secret : {kPassword, kPin, kCookie, kField})
        if (isInside(secret) || isInside(Base64Core(secret, 0)) ||
            isInside(Base64Core(secret, 1)) || isInside(Base64Core(secret, 2)))
            found.push_back(secret);
    return found;
}

void SearchFiles(const std::string& directory, std::vector<std::string>& found) {
    std::error_code error;
    std::filesystem::recursive_directory_iterator entry(directory, error);
    for (; entry != end(entry); entry.increment(error)) {
        if (!Canaries(entry->path().string()).empty())
            found.push_back("the name " + entry->path().string());
        std::ifstream file(entry->path(), std::ios::binary);
        std::ostringstream content;
        content << file.rdbuf();
        for (const std::string& secret : Canaries(content.str()))
            found.push_back(entry->path().string() + ": " + secret);
    }
}

class OnePassword final : public platform::Prompt {
public:
    int Ask(const CString&, UINT) override { return IDCANCEL; }
    bool AskCredentials(const CString&, CString& name, CString& password,
                        const std::function<bool()>&) override {
        name = "me";
        password = CString(kPassword);
        return std::exchange(m_isLeft, false);
    }

private:
    bool m_isLeft = true;
    platform::ScopedService<platform::Prompt> m_service{*this};
};

class Canary : public testing::TestWithParam<const char*> {
protected:
    Canary() {
        std::filesystem::create_directories(m_home.Path("tmp"));
        m_server.Set("/page", Html("<p>page"));
        Answer guarded;
        guarded.choose = [](const ReceivedRequest& request) {
            if (request.Header("Authorization") != "(none)") return Html("inside");
            Answer refusal = Html("outside");
            refusal.status = 401;
            refusal.headers = {{"WWW-Authenticate", "Basic realm=\"bank\""}};
            return refusal;
        };
        m_server.Set("/guarded", guarded);
    }
    // Everything that this machine shows of the test so far.
    void ExpectNoTrace() {
        std::vector<std::string> found;
        SearchFiles(m_home.Path(), found);
        for (const auto& entry : std::filesystem::directory_iterator("/dev/shm"))
            if (entry.path().filename().string().starts_with("zrhttp-"))
                SearchFiles(entry.path(), found);
        // The tool's arguments are its user's: another test may run it with such a URL.
        for (const Process& process : AllProcesses())
            for (const std::string& secret : Canaries(process.commandLine))
                if (process.name != "zrhttp")
                    found.push_back("the command line of " + process.name + ": " + secret);
        EXPECT_THAT(found, IsEmpty());
    }
    // A URL with credentials and a PIN, and another one in its query; the path begins with a slash.
    std::string Url(const std::string& path, int port) const {
        const auto secret = [&](const std::string& host, const std::string& name) {
            return "http://me:" + Percent(kPassword) + "@" + host + path + "?" + name + "=" +
                   Percent(kPin);
        };
        return secret("127.0.0.1:" + std::to_string(port), "userPin") +
               "&next=" + Percent(secret("h", "a=1;pushtan"));
    }
    std::string Log() const { return m_home.ReadFile("log/zrhttpbase3.log").value_or(""); }

    const TemporaryHome m_home;
    const ScopedVariable m_temporary{"TMPDIR", m_home.Path("tmp").c_str()};
    const ScopedVariable m_runtime{"XDG_RUNTIME_DIR", m_home.Path("tmp").c_str()};
    const ScopedVariable m_control{"ZRHTTP_CONTROL", GetParam()};
    const ScopedVariable m_application{"ZRHTTP_APPLICATION", GetParam()};
    const ScopedVariable m_headless{"ZRHTTP_HEADLESS", "1"};
    TestServer m_server;
};

} // namespace

TEST_P(Canary, InPagesAndForms) {
    CZrHbDataTransmit form;
    form.SetField("pin", CString(kPin), CZrHbDataTransmit::eDataConfidentialityType_Confidential);
    form.SetField("x", CString(kField), CZrHbDataTransmit::eDataConfidentialityType_Confidential);
    const CString masked = form.GetURLEncodedData(CZrHbDataTransmit::eRequestDataType_Masked, 0);
    EXPECT_THAT(Canaries(std::string(masked.View())), IsEmpty());
    const CString data = form.GetURLEncodedData(CZrHbDataTransmit::eRequestDataType_Plain, 0);
    const CString headers("Content-Type: application/x-www-form-urlencoded\r\nCookie: session=" +
                          kCookie + "\r\nX-Token: " + kField + "\r\n");
    for (const char* system : {"0", "1"}) { // in this process, then an application
        const ScopedVariable legacy("ZRHTTP_LEGACY_SYSTEM", system);
        CZrHbUHttpGet getter(eAppGroup_2);
        CString error;
        CString url;
        CString page;
        ASSERT_EQ(getter.ConnectV3(GetDesktopWindow(), error, CZrHbUHttpGet::eVisible,
                                   CZrHbUHttpGet::eConnectWith_InternetExplorer, 7, "trace",
                                   CString(Url("/page", m_server.Port())), 0, 0),
                  ZRHB_OK);
        getter.SetSecurityTimeout(0);
        for (const auto& [path, port] : {std::pair("/page", m_server.Port()),
                                         std::pair("/none", m_server.Port()), std::pair("/", 1)}) {
            getter.Open(CString(Url(path, port)), error, data, headers, FALSE);
            getter.BusyRead(page, error, url, 30'000, FALSE, 30'000, nullptr, nullptr);
            EXPECT_THAT(Canaries(std::string(error.View())), IsEmpty());
            ExpectNoTrace();
        }
    }
    ASSERT_EQ(m_server.Requests("/page").size(), 2u);
    for (const ReceivedRequest& request : m_server.Requests("/page")) { // what is searched for
        EXPECT_EQ(Canaries(request.body).size(), 2u) << request.body;
        EXPECT_EQ(Canaries(request.Header("X-Token")).size(), 1u);
        EXPECT_EQ(Canaries(request.target).size(), 2u) << request.target;
    }
    EXPECT_THAT(Log(), HasSubstr("***@127.0.0.1"));
}

TEST_P(Canary, InDownloads) {
    OnePassword prompt;
    const CString file(std::string_view(m_home.Path("file")));
    CZrHbInet inet;
    const std::string guarded = m_server.Url("/guarded?pin=" + Percent(kPin));
    EXPECT_EQ(inet.DownloadFile(CString(guarded), file), TRUE);
    EXPECT_EQ(m_home.ReadFile("file"), "inside");
    EXPECT_EQ(Canaries(m_server.Requests("/guarded").back().Header("Authorization")).size(), 1u);
    inet.DownloadFile(CString(Url("/none", m_server.Port())), file);
    inet.DownloadFile(CString(Url("/", 1)), file);
    EXPECT_THAT(Log(), HasSubstr("pin=***"));
    ExpectNoTrace();
}

TEST_P(Canary, InTheToolsMessages) {
    m_home.WriteFile("pin", kPin);
    m_home.WriteFile("data", "pin=" + kPin + "&password=" + kPassword);
    const std::vector<std::vector<std::string>> runs{
        {"fetch", "--post-file", m_home.Path("data"), m_server.Url("/page")},
        {"fetch", "--via", "application", "--post-file", m_home.Path("data"),
         "http://127.0.0.1:1/"},
        {"form", "--secret", "pin=@" + m_home.Path("pin"), "--as", "multipart", "--masked"},
        {"form", "--secret", "pin=@" + m_home.Path("pin"), "--as", "nothing"},
        {"fetch", "--post", "x", "--header", "X-Pin " + kPin, "--header", kPin + ":1", "x:"},
        {"fetch", "x:", kPassword},
        {"fetch", "--save", m_home.Path(Url("/no", 1)), Url("/none", 1)},
        {"fetch", "--via", "application", "SIM:" + Url("/page", m_server.Port())},
        {"download", "--json", Url("/page", 1), m_home.Path("file")},
        {"reply", m_home.Path("data")}};
    for (const auto& arguments : runs) {
        const ToolRun run = RunTool(arguments);
        EXPECT_THAT(Canaries(run.error + run.output), IsEmpty()) << arguments[0];
    }
    std::filesystem::remove(m_home.Path("pin"));
    std::filesystem::remove(m_home.Path("data"));
    ExpectNoTrace();
}

TEST_P(Canary, InRecordingsOnlyWhichNobodyElseReads) {
    const ScopedVariable legacy("ZRHTTP_LEGACY_SYSTEM", "1");
    CZrHbUHttpGet getter(eAppGroup_2);
    CString error;
    CString url;
    CString page;
    ASSERT_EQ(getter.Connect(GetDesktopWindow(), error, CZrHbUHttpGet::eVisible,
                             CZrHbUHttpGet::eConnectWith_InternetExplorer, 7, "trace"),
              ZRHB_OK);
    const std::string folder = m_home.Path("drive_c/HttpGet_Simulate");
    std::filesystem::create_directories(folder);
    getter.Open(CString("SAVE:" + m_server.Url("/page")), error, CString("pin=" + kPin), nullptr,
                FALSE);
    EXPECT_EQ(getter.BusyRead(page, error, url, 30'000, FALSE, 30'000, nullptr, nullptr), ZRHB_OK);
    std::vector<std::string> recorded;
    SearchFiles(folder, recorded);
    EXPECT_FALSE(recorded.empty());
    using std::filesystem::perms;
    for (const auto& entry : std::filesystem::directory_iterator(folder))
        EXPECT_EQ(entry.status().permissions() & (perms::group_all | perms::others_all),
                  perms::none)
            << entry.path();
    std::filesystem::remove_all(folder);
    ExpectNoTrace();
}

INSTANTIATE_TEST_SUITE_P(Of, Canary, testing::Values("builtin", "chromium"),
                         [](const auto& engine) { return std::string(engine.param); });
