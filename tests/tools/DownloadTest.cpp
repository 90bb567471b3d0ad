// zrhttp download, reasons, autodial.

#include <fstream>
#include <tuple>

#include "siblings/ZrCbRegistry.h"
#include "support/RawServer.h"
#include "support/ScopedVariable.h"
#include "tools/ToolTest.h"

namespace {

class DownloadCommand : public testing::Test {
protected:
    DownloadCommand() {
        std::filesystem::create_directory(m_home.Path("files"));
        m_server.Set("/list", Bytes("application/pdf", m_content));
    }
    std::string Target() const { return m_home.Path("files/list.pdf"); }
    static Words CommandLine(Words options, const std::string& url, const std::string& file) {
        options.insert(options.begin(), "download");
        options.push_back(url);
        options.push_back(file);
        return options;
    }
    static ToolRun Run(const Words& options, const std::string& url, const std::string& file) {
        return RunTool(CommandLine(options, url, file));
    }
    // The file, for those who come with these credentials.
    Answer Guarded(const std::string& credentials) const {
        Answer answer;
        answer.choose =
            [=, file = Bytes("application/pdf", m_content)](const ReceivedRequest& request) {
                if (request.Header("Authorization") == credentials) return file;
                Answer refusal = Html("no");
                refusal.status = 401;
                refusal.headers = {{"WWW-Authenticate", "Basic realm=\"lists\""}};
                return refusal;
            };
        return answer;
    }
    static unsigned ModeOf(const std::string& file) {
        return static_cast<unsigned>(std::filesystem::status(file).permissions());
    }
    // The names in the target's directory.
    std::vector<std::string> Files() const {
        std::vector<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator(m_home.Path("files")))
            names.push_back(entry.path().filename());
        return names;
    }

    const std::string m_content = std::string(100'000, '\xFF') + std::string("\0\r\n", 3);
    TemporaryHome m_home;
    TestServer m_server;
};

const std::vector<Words> kForms = {{}, {"--background"}};

TEST_F(DownloadCommand, BringsTheFileInBothForms) {
    for (const auto& form : kForms) {
        m_home.WriteFile("files/list.pdf", "an older one");
        chmod(Target().c_str(), 0600);
        const auto run = Run(form, m_server.Url("/list"), Target());
        EXPECT_EQ(run.exitStatus, 0) << run.error;
        EXPECT_EQ(run.output, "");
        EXPECT_EQ(m_home.ReadFile("files/list.pdf"), m_content);
        EXPECT_EQ(ModeOf(Target()), 0600u) << "it keeps its mode";
        EXPECT_THAT(run.error,
                    MatchesRegex(form.empty() ? "" : "(10 %\n)?(20 %\n)?.*(90 %\n)?100 %\n"));
    }
    EXPECT_THAT(Files(), ElementsAre("list.pdf"));
    const json result = json::parse(Run({"--json"}, m_server.Url("/list"), Target()).output);
    EXPECT_EQ(result["complete"], true);
    EXPECT_EQ(result["http_status"], 200);
    EXPECT_EQ(result["length"], m_content.size());
    EXPECT_EQ(result["file"], Target());
    EXPECT_EQ(result["url"], m_server.Url("/list"));
    EXPECT_GE(result["elapsed_ms"], 0);
}

// Two looks of the progress pass before anything is typed: it must not cover the question.
TEST_F(DownloadCommand, AsksForNameAndPasswordOnTheTerminal) {
    m_server.Set("/guarded", Guarded("Basic bWU6c2VjcmV0"));
    for (const auto& form : kForms) {
        std::filesystem::remove(Target());
        ToolOnTerminal tool(CommandLine(form, m_server.Url("/guarded"), Target()));
        tool.TypeAfter("Name: ", "");
        std::this_thread::sleep_for(std::chrono::milliseconds(250));
        tool.TypeAfter("Name: ", "me\n");
        tool.TypeAfter("Password: ", "secret\n");
        const ToolRun run = tool.Wait();
        EXPECT_EQ(run.exitStatus, 0) << run.output;
        EXPECT_THAT(run.output, HasSubstr("Name: me\r\nPassword: \r\n"));
        EXPECT_EQ(m_home.ReadFile("files/list.pdf"), m_content);
    }
}

TEST_F(DownloadCommand, CtrlCIsAnAnswerToEachQuestion) {
    m_server.Set("/guarded", Guarded("nobody"));
    for (const auto& form : kForms) {
        for (const bool isName : {true, false}) {
            ToolOnTerminal tool(CommandLine(form, m_server.Url("/guarded"), Target()));
            tool.TypeAfter("Name: ", isName ? "m\x03" : "me\n");
            if (!isName) tool.TypeAfter("Password: ", "sec\x03");
            const ToolRun run = tool.Wait();
            EXPECT_EQ(run.exitStatus, 128 + SIGINT) << run.output;
            EXPECT_THAT(run.output, HasSubstr("the download was stopped"));
            EXPECT_THAT(Files(), IsEmpty());
            EXPECT_TRUE(tool.IsEchoing());
        }
    }
}

TEST_F(DownloadCommand, FollowsLinksAndWritesToDevices) {
    m_home.WriteFile("elsewhere", "old");
    std::filesystem::create_symlink(m_home.Path("elsewhere"), Target());
    EXPECT_EQ(Run({}, m_server.Url("/list"), Target()).exitStatus, 0);
    EXPECT_TRUE(std::filesystem::is_symlink(Target()));
    EXPECT_EQ(m_home.ReadFile("elsewhere"), m_content);
    EXPECT_EQ(Run({}, m_server.Url("/list"), "/dev/null").exitStatus, 0);
    EXPECT_TRUE(std::filesystem::is_character_file("/dev/null"));
    EXPECT_THAT(Run({}, m_server.Url("/list"), "/dev/full").error,
                HasSubstr("Attempt to write file /dev/full failed with error There is not enough "
                          "space on the disk.\n"));
}

// Another process writes into the log, which all share, while this one waits.
TEST_F(DownloadCommand, AFailureIsExplainedAndLeavesWhatWasThere) {
    Answer answer;
    answer.choose = [this](const ReceivedRequest&) {
        std::ofstream(m_home.Path("log/zrhttpbase3.log"), std::ios::app)
            << "2026-01-01T00:00:00Z\tgroup 2\terror\tA.cpp:1\tanother's failure\n";
        return Redirect(302, kNobody);
    };
    m_server.Set("/elsewhere", answer);
    for (const auto& form : kForms) {
        m_home.WriteFile("files/list.pdf", "an older one");
        const auto run = Run(form, m_server.Url("/elsewhere"), Target());
        EXPECT_EQ(run.exitStatus, 1);
        EXPECT_EQ(run.output, "");
        EXPECT_THAT(run.error,
                    AllOf(StartsWith("zrhttp: the download failed\nInternetOpenUrl() -> "),
                          HasSubstr("Text = \"connection refused"),
                          HasSubstr("\nMögliche Ursachen:\n- Keine Verbindung ins Internet\n"),
                          HasSubstr(m_home.Path("log/zrhttpbase3.log") + "\n")));
        EXPECT_EQ(m_home.ReadFile("files/list.pdf"), "an older one");
        EXPECT_THAT(Files(), ElementsAre("list.pdf"));
    }
    const ScopedVariable nowhere("ZRHTTP_HOME", "/dev/null");
    EXPECT_THAT(Run({}, "http://127.0.0.1:1/list", Target()).error,
                AllOf(HasSubstr("\"connection refused\""), Not(HasSubstr("zrhttpbase3.log"))));
}

TEST_F(DownloadCommand, AReplyThatIsNoFileNamesItsCause) {
    constexpr const char* kOk = "HTTP/1.1 200 OK\r\n";
    const auto never = std::make_shared<Gate>();
    RawServer server;
    server.Set("/cut", kOk + std::string("Content-Length: 9\r\n\r\n1234"));
    server.Set("/chunks", kOk + std::string("Transfer-Encoding: chunked\r\n\r\n4\r\n12"));
    server.Set("/halt", kOk + std::string("Content-Length: 9\r\n\r\n1234"), never, "56789");
    server.Set("/secret", "HTTP/1.1 401 -\r\nWWW-Authenticate: Basic realm=x\r\n\r\nno");
    server.Set("/gone", "HTTP/1.1 404 -\r\nContent-Length: 4\r\n\r\ngone");
    server.Set("/other", "HTTP/1.1 499 -\r\nTransfer-Encoding: chunked\r\n\r\n1\r\nx\r\n0\r\n\r\n");
    const std::tuple<const char*, Words, const char*> replies[] = {
        {"/cut", {}, "incomplete: 4 of 9 bytes\nInternetReadFile() -> "},
        {"/chunks",
         {},
         "incomplete: the connection broke off after 2 bytes\nInternetReadFile() -> "},
        {"/halt", {"--timeout", "300"}, "incomplete: 4 of 9 bytes, no progress within 300 ms\n"},
        {"/secret", {"--keep-error-page"}, "401 Unauthorized: the server wants credentials\n"},
        {"/gone", {}, "404 Not Found\n"},
        {"/other", {}, "499\n"},
    };
    m_home.WriteFile("files/list.pdf", "an older one");
    for (auto form : kForms)
        for (const auto& [path, options, cause] : replies) {
            Words words = options;
            words.insert(words.end(), form.begin(), form.end());
            const auto run = Run(words, server.Url(path), Target());
            EXPECT_EQ(run.exitStatus, 1) << path;
            EXPECT_THAT(run.error,
                        AllOf(HasSubstr("zrhttp: the download failed: " + std::string(cause)),
                              Not(HasSubstr("Ursachen"))))
                << path;
            EXPECT_EQ(m_home.ReadFile("files/list.pdf"), "an older one") << path;
        }
    const auto kept = Run({"--keep-error-page", "--json"}, server.Url("/gone"), Target());
    EXPECT_EQ(kept.exitStatus, 0) << kept.error;
    EXPECT_EQ(json::parse(kept.output)["http_status"], 404);
    EXPECT_EQ(m_home.ReadFile("files/list.pdf"), "gone");
    never->Open();
}

TEST_F(DownloadCommand, RefusesWhatCannotBe) {
    ASSERT_EQ(mkfifo(m_home.Path("pipe").c_str(), 0600), 0);
    for (const char* url : {"", "list.pdf", "//bank.test/", "ftp://bank.test/", "http://",
                            "http://ba nk.test/", "file:///etc/passwd"}) {
        const auto run = Run({}, url, Target());
        EXPECT_EQ(run.exitStatus, 2) << url;
        EXPECT_THAT(run.error, StartsWith("zrhttp: URL: ")) << url;
    }
    for (const auto& form : kForms)
        for (const std::string& file :
             {m_home.Path("files"), m_home.Path("missing/list"), m_home.Path("pipe")}) {
            const auto run = Run(form, m_server.Url("/list"), file);
            EXPECT_EQ(run.exitStatus, 1) << file;
            EXPECT_THAT(run.error, StartsWith("zrhttp: cannot write '" + file + "': "));
        }
    EXPECT_EQ(Run({}, m_server.Url("/list"), "").error, "zrhttp: FILE: is empty\n");
    const auto failed = Run({"--json"}, "http://127.0.0.1:1/list", Target());
    EXPECT_EQ(json::parse(failed.output)["complete"], false);
    EXPECT_THAT(Files(), IsEmpty());
    EXPECT_THAT(m_server.Requests(), IsEmpty());
}

// Not even one that is killed leaves anything.
TEST_F(DownloadCommand, SignalsEndItAndKeepNothing) {
    Answer halting = Bytes("application/pdf", "");
    halting.pieces = {m_content, m_content};
    halting.pieceGate = std::make_shared<Gate>();
    m_server.Set("/halting", halting);
    for (Words words : kForms) {
        words.push_back("--json");
        for (const int signalNumber : {SIGINT, SIGTERM, SIGHUP, SIGQUIT, SIGKILL}) {
            const std::size_t before = m_server.Requests("/halting").size();
            ToolProcess tool(CommandLine(words, m_server.Url("/halting"), Target()));
            while (m_server.Requests("/halting").size() == before)
                std::this_thread::sleep_for(std::chrono::milliseconds(2));
            tool.Signal(signalNumber);
            const ToolRun run = tool.Wait();
            EXPECT_EQ(run.exitStatus, 128 + signalNumber);
            EXPECT_THAT(Files(), IsEmpty());
            if (signalNumber == SIGKILL) continue;
            EXPECT_THAT(run.error,
                        HasSubstr("zrhttp: the download was stopped; nothing is kept\n"));
            EXPECT_EQ(json::parse(run.output)["stopped"], true);
        }
    }
    halting.pieceGate->Open();
}

TEST_F(DownloadCommand, ShowsABarOnATerminal) {
    Answer slow = Bytes("application/pdf", "");
    slow.pieces = {std::string(30'000, 'x'), std::string(70'000, 'x')};
    slow.pieceGate = std::make_shared<Gate>();
    m_server.Set("/slow", slow);
    ToolOnTerminal tool({"download", "--background", m_server.Url("/slow"), Target()});
    tool.TypeAfter("[#######.................]  30 %  30.0 kB  ", "");
    slow.pieceGate->Open();
    const auto run = tool.Wait();
    EXPECT_EQ(run.exitStatus, 0) << run.output;
    EXPECT_THAT(run.output, HasSubstr("[########################] 100 %  100.0 kB  "));
    EXPECT_THAT(run.output, ContainsRegex("kB/s  0:[0-9][0-9] left"));
    EXPECT_TRUE(run.output.ends_with("\r\033[K")) << "the bar is removed";
}

TEST(ReasonsCommand, PrintsThemInTheTerminalsEncoding) {
    const ScopedVariable locale("LC_ALL", "C.UTF-8");
    EXPECT_THAT(RunTool({"reasons", "1"}).output,
                AllOf(StartsWith("Mögliche Ursachen:\n- Keine Verbindung ins Internet\n"),
                      HasSubstr("CleanMyPC, Companion usw.)\n")));
    EXPECT_THAT(RunTool({"reasons", "2"}).output, Not(HasSubstr("Keine Verbindung")));
    EXPECT_EQ(RunTool({"reasons", "3"}).exitStatus, 2);
}

TEST(AutodialCommand, ShowsAndSwitchesTheSetting) {
    const TemporaryHome home;
    const auto missing = RunTool({"autodial", "on"});
    EXPECT_EQ(missing.exitStatus, 1);
    EXPECT_THAT(missing.error, HasSubstr("the automatic dial-up setting is not there"));
    const BYTE off[4] = {};
    CZrCbRegistry::SetRegistryKeyValueBinary(
        HKEY_CURRENT_USER, "Software\\Microsoft\\Windows\\CurrentVersion\\Internet Settings",
        "EnableAutodial", off, sizeof off, KEY_WRITE);
    EXPECT_EQ(RunTool({"autodial"}).output, "off\n");
    EXPECT_EQ(RunTool({"autodial", "on"}).output, "on\n");
    EXPECT_EQ(RunTool({"autodial", "off"}).output, "off\n");
}

} // namespace
