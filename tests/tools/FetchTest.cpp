#include <sqlite3.h>

#include "tools/ToolTest.h"

namespace {

class Fetch : public testing::Test {
protected:
    ToolRun Run(Words options, std::string_view input = "") const {
        options.insert(options.begin(), {"fetch", server.Url("/")});
        return RunTool(options, input);
    }
    auto FilesInOut() const {
        return std::distance(std::filesystem::directory_iterator(home.Path("out")), {});
    }

    TestServer server;
    const TemporaryHome home;
};

TEST_F(Fetch, HandsOutExactlyTheBytesReceived) {
    std::string bytes = "<p>\r\n";
    for (int value = 0; value < 256; ++value)
        bytes += static_cast<char>(value);
    server.Set("/", Html(bytes));
    const auto run = Run({});
    EXPECT_EQ(run.exitStatus, 0) << run.error;
    EXPECT_EQ(run.output, bytes);
    EXPECT_EQ(run.error, "");

    const auto toFile = Run({"--output", home.Path("page"), "--json"});
    EXPECT_EQ(home.ReadFile("page"), bytes);
    const json result = json::parse(toFile.output);
    EXPECT_EQ(result["code"], 0);
    EXPECT_EQ(result["url"], server.Url("/"));
    EXPECT_EQ(result["length"], bytes.size());
    EXPECT_FALSE(result.contains("pages"));

    server.Set("/", Html("a\nb\r\nc"));
    EXPECT_EQ(Run({"--save", home.Path("page")}).exitStatus, 0);
    EXPECT_EQ(home.ReadFile("page"), "a\r\nb\r\nc");
}

TEST_F(Fetch, PostsExactBytesWithTheCallersHeaders) {
    server.Set("/", Html("ok"));
    const std::string body("a=1\0b\r\n\xFF", 8);
    EXPECT_EQ(
        Run({"--header", "X-One: 1", "--header", "X-Two: [a, b]", "--post-file", "-"}, body).output,
        "ok");
    EXPECT_EQ(Run({"--header", "content-type: text/x", "--post", "\xC3\xBC"}).output, "ok");
    const auto requests = server.Requests("/");
    ASSERT_EQ(requests.size(), 2u);
    EXPECT_EQ(requests[0].method, "POST");
    EXPECT_EQ(requests[0].body, body);
    EXPECT_EQ(requests[0].Header("X-One"), "1");
    EXPECT_EQ(requests[0].Header("X-Two"), "[a, b]");
    EXPECT_EQ(requests[0].Header("Content-Type"), "application/x-www-form-urlencoded");
    EXPECT_EQ(requests[1].body, "\xFC");
    EXPECT_EQ(requests[1].Header("Content-Type"), "text/x");
}

TEST_F(Fetch, IsNotHeldUpByARegistryThatAnotherProcessHoldsNorByALogThatNobodyReads) {
    server.Set("/", Html("ok"));
    const Words options{"--content-type", "application/x-foo"};
    ASSERT_EQ(Run(options).exitStatus, 0);
    std::filesystem::remove_all(home.Path("log"));
    std::filesystem::create_directory(home.Path("log"));
    ASSERT_EQ(mkfifo(home.Path("log/zrhttpbase3.log").c_str(), 0600), 0);
    sqlite3* registry = nullptr;
    sqlite3_open(home.Path("registry.sqlite").c_str(), &registry);
    ASSERT_EQ(sqlite3_exec(registry, "BEGIN EXCLUSIVE", nullptr, nullptr, nullptr), SQLITE_OK);
    const auto begin = std::chrono::steady_clock::now();
    EXPECT_EQ(Run(options).output, "ok");
    EXPECT_LT(std::chrono::steady_clock::now() - begin,
              std::chrono::seconds(5)); // 12, call by call
    sqlite3_close(registry);
}

TEST_F(Fetch, CollectsFramesBeforeTheirPage) {
    server.Set("/", Html("<frameset><frame src=a></frameset>"));
    server.Set("/a", Html("links \xFC"));
    const auto run = Run({"--collect"});
    EXPECT_EQ(run.exitStatus, 0);
    EXPECT_THAT(run.error, EndsWith("==> " + server.Url("/") + " <==\n"));
    EXPECT_EQ(run.output, "links \xFC<frameset><frame src=a></frameset>");

    const json pages = json::parse(Run({"--collect", "--json"}).output)["pages"];
    ASSERT_EQ(pages.size(), 2u);
    EXPECT_EQ(pages[1]["url"], server.Url("/"));
    EXPECT_EQ(pages[0]["source"], "links \xC3\xBC");
    EXPECT_EQ(pages[0]["length"], 7);
}

TEST_F(Fetch, FailuresExitWithTheirCodeAndSayWhy) {
    const auto refused = RunTool({"fetch", kNobody, "--json"});
    EXPECT_EQ(refused.exitStatus, 22);
    EXPECT_THAT(refused.error, AllOf(StartsWith("zrhttp: 22: "), HasSubstr("refused")));
    const json result = json::parse(refused.output);
    EXPECT_EQ(result["code"], 22);
    EXPECT_THAT(result["status"].get<std::string>(), HasSubstr("refused"));

    EXPECT_EQ(RunTool({"fetch", "gopher://127.0.0.1/"}).exitStatus, 23);
    server.Set("/", Bytes("application/x-foo", "x"));
    EXPECT_EQ(Run({"--content-type", "application/x-foo"}).output, "x");
    EXPECT_EQ(Run({}).exitStatus, 22) << "it is shown once only";
}

TEST_F(Fetch, OutputFileIsReplacedOnlyByACompletePage) {
    server.Set("/", Html("new"));
    home.WriteFile("out/page", "old");
    const std::string page = home.Path("out/page");
    chmod(page.c_str(), 0600);
    EXPECT_EQ(RunTool({"fetch", kNobody, "--output", page}).exitStatus, 22);
    EXPECT_EQ(home.ReadFile("out/page"), "old");

    symlink("page", home.Path("out/link").c_str());
    EXPECT_EQ(Run({"--output", home.Path("out/link")}).exitStatus, 0);
    EXPECT_EQ(home.ReadFile("out/page"), "new");
    EXPECT_EQ(static_cast<unsigned>(std::filesystem::status(page).permissions()), 0600u);
    EXPECT_EQ(FilesInOut(), 2);
}

TEST_F(Fetch, NothingIsSentWhenTheFileCannotBeWritten) {
    server.Set("/", Html("x"));
    const auto output = Run({"--post", "pay=1", "--output", home.Path("none/page")});
    EXPECT_EQ(output.exitStatus, 1);
    EXPECT_THAT(output.error, HasSubstr("No such file or directory"));
    EXPECT_EQ(Run({"--post", "pay=1", "--save", home.Path("")}).exitStatus, 26);
    EXPECT_THAT(server.Requests(), IsEmpty());

    const auto full = Run({"--output", "/dev/full"});
    EXPECT_EQ(full.exitStatus, 1);
    EXPECT_THAT(full.error, HasSubstr("No space left"));
}

TEST_F(Fetch, InterruptStopsCleanly) {
    const auto gate = std::make_shared<Gate>();
    Answer answer = Html("");
    answer.pieces = {"<p>", "</p>"};
    answer.pieceGate = gate;
    server.Set("/", answer);
    home.WriteFile("out/page", "old");
    for (const int signalNumber : {SIGINT, SIGTERM, SIGHUP, SIGQUIT}) {
        const std::size_t before = server.Requests("/").size();
        ToolProcess tool({"fetch", server.Url("/"), "--output", home.Path("out/page"), "--json"});
        while (server.Requests("/").size() == before)
            std::this_thread::yield();
        tool.Signal(signalNumber);
        const auto run = tool.Wait();
        EXPECT_EQ(run.exitStatus, 128 + signalNumber);
        EXPECT_THAT(run.error, HasSubstr("28: Stopped by an interrupt."));
        EXPECT_EQ(json::parse(run.output)["code"], 28);
    }
    EXPECT_EQ(home.ReadFile("out/page"), "old");
    EXPECT_EQ(FilesInOut(), 1);
    gate->Open();
}

TEST_F(Fetch, OneCtrlCEndsAShellsLoop) {
    Answer answer = Html("");
    answer.gate = std::make_shared<Gate>();
    server.Set("/", answer);
    const std::string script = "for i in 1 2 3; do $ZRHTTP fetch " + server.Url("/") + "; done";
    ToolOnTerminal shell({"-c", script + "; echo over"}, "/bin/bash");
    while (server.Requests("/").empty())
        std::this_thread::yield();
    shell.TypeAfter("bytes", "\x03");
    answer.gate->Open();
    const auto run = shell.Wait();
    EXPECT_EQ(run.exitStatus, 128 + SIGINT);
    EXPECT_THAT(run.output, Not(HasSubstr("over")));
    EXPECT_EQ(server.Requests("/").size(), 1u);

    Answer refusal = Html("");
    refusal.status = 401;
    refusal.headers = {{"WWW-Authenticate", "Basic realm=\"x\""}};
    server.Set("/inside", refusal);
    const std::string download = "$ZRHTTP download " + server.Url("/inside") + " $ZRHTTP_HOME/x";
    ToolOnTerminal asked({"-c", "for i in 1 2 3; do " + download + "; done; echo over"},
                         "/bin/bash");
    asked.TypeAfter("Name:", "me\r");
    asked.TypeAfter("Password:", "\x03");
    EXPECT_THAT(asked.Wait().output, Not(HasSubstr("over")));
}

TEST_F(Fetch, ControlCharactersDoNotReachATerminal) {
    server.Set("/type", Bytes("application/\033[31mred", "x"));
    server.Set("/", Html("\033]0;title\007 \xC2\x9B"
                         "31m \xE2\x80\xAE right\r\nleft\rover\n"));
    const auto run = RunToolOnTerminal({"fetch", server.Url("/")});
    EXPECT_EQ(run.exitStatus, 0);
    EXPECT_THAT(run.output, HasSubstr("^[]0;title^G <U+009B>31m <U+202E> right"));
    EXPECT_THAT(run.output, HasSubstr("left^Mover"));

    EXPECT_THAT(RunTool({"fetch", server.Url("/type")}).error,
                AllOf(StartsWith("zrhttp: 22: "), Not(HasSubstr("\033"))));
    EXPECT_THAT(Run({"--collect", "--json"}).output,
                AllOf(HasSubstr("\\u009b"), Not(HasSubstr("\xC2\x9B"))));
}

} // namespace
