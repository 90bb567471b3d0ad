#include <csignal>
#include <filesystem>
#include <memory>
#include <thread>

#include <sys/stat.h>
#include <unistd.h>

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include "support/RunTool.h"
#include "support/TemporaryHome.h"
#include "support/TestServer.h"

namespace {

using nlohmann::json;
using test_support::Bytes;
using test_support::Gate;
using test_support::Html;
using test_support::RunTool;
using test_support::RunToolOnTerminal;
using test_support::TemporaryHome;
using test_support::TestServer;
using test_support::ToolProcess;
using testing::AllOf;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

constexpr const char* kNobody = "http://127.0.0.1:1/"; // nothing listens there

std::string AllBytes() {
    std::string bytes = "<p>\r\n";
    for (int value = 0; value < 256; ++value)
        bytes += static_cast<char>(value);
    return bytes;
}

std::size_t FilesIn(const TemporaryHome& home, const std::string& folder) {
    const std::filesystem::directory_iterator entries(home.Path(folder));
    return static_cast<std::size_t>(std::distance(begin(entries), end(entries)));
}

TEST(Fetch, HandsOutExactlyTheBytesReceived) {
    TestServer server;
    server.Set("/", Html(AllBytes()));
    const TemporaryHome home;
    const auto run = RunTool({"fetch", server.Url("/")});
    EXPECT_EQ(run.exitStatus, 0) << run.error;
    EXPECT_EQ(run.output, AllBytes());
    EXPECT_EQ(run.error, "");

    const auto toFile =
        RunTool({"fetch", server.Url("/"), "--output", home.Path("page"), "--json"});
    EXPECT_EQ(home.ReadFile("page"), AllBytes());
    const json result = json::parse(toFile.output);
    EXPECT_EQ(result["code"], 0);
    EXPECT_EQ(result["url"], server.Url("/"));
    EXPECT_EQ(result["length"], AllBytes().size());
    EXPECT_THAT(toFile.output, Not(HasSubstr("pages")));
}

TEST(Fetch, PostsExactBytesWithTheCallersHeaders) {
    TestServer server;
    server.Set("/bank", Html("ok"));
    const std::string body("a=1\0b\r\n\xFF", 8);
    EXPECT_EQ(RunTool({"fetch", "--header", "X-One: 1", "--header", "X-Two: [a, b]", "--post-file",
                       "-", server.Url("/bank")},
                      body)
                  .output,
              "ok");
    EXPECT_EQ(RunTool({"fetch", "--header", "content-type: text/x", "--post", "\xC3\xBC",
                       server.Url("/bank")})
                  .output,
              "ok");
    const auto requests = server.Requests("/bank");
    ASSERT_EQ(requests.size(), 2u);
    EXPECT_EQ(requests[0].method, "POST");
    EXPECT_EQ(requests[0].body, body);
    EXPECT_EQ(requests[0].Header("X-One"), "1");
    EXPECT_EQ(requests[0].Header("X-Two"), "[a, b]");
    EXPECT_EQ(requests[0].Header("Content-Type"), "application/x-www-form-urlencoded");
    EXPECT_EQ(requests[1].body, "\xFC");
    EXPECT_EQ(requests[1].Header("Content-Type"), "text/x");
}

TEST(Fetch, CollectsFramesBeforeTheirPage) {
    TestServer server;
    server.Set("/", Html("<frameset><frame src=a><frame src=b></frameset>"));
    server.Set("/a", Html("links \xFC"));
    server.Set("/b", Html("rechts \xC3\xBC"));
    const auto run = RunTool({"fetch", server.Url("/"), "--collect"});
    EXPECT_EQ(run.exitStatus, 0);
    EXPECT_THAT(run.error, EndsWith("==> " + server.Url("/") + " <==\n"));
    EXPECT_THAT(run.output,
                AllOf(HasSubstr("links \xFC"), HasSubstr("rechts"), EndsWith("</frameset>")));

    const json pages =
        json::parse(RunTool({"fetch", server.Url("/"), "--collect", "--json"}).output)["pages"];
    ASSERT_EQ(pages.size(), 3u);
    EXPECT_EQ(pages[2]["url"], server.Url("/"));
    for (const json& page : pages) {
        if (page["url"] != server.Url("/a")) continue;
        EXPECT_EQ(page["source"], "links \xC3\xBC");
        EXPECT_EQ(page["length"], 7);
    }
}

TEST(Fetch, SavesTextWithCrLf) {
    TestServer server;
    server.Set("/", Html("a\nb\r\nc"));
    const TemporaryHome home;
    EXPECT_EQ(RunTool({"fetch", server.Url("/"), "--save", home.Path("page")}).exitStatus, 0);
    EXPECT_EQ(home.ReadFile("page"), "a\r\nb\r\nc");
}

TEST(Fetch, ContentTypeShowsOneReplyOnly) {
    TestServer server;
    server.Set("/", Bytes("application/x-foo", "x"));
    const TemporaryHome home;
    EXPECT_EQ(RunTool({"fetch", server.Url("/")}).exitStatus, 22);
    EXPECT_EQ(RunTool({"fetch", server.Url("/"), "--content-type", "application/x-foo"}).output,
              "x");
    EXPECT_EQ(RunTool({"fetch", server.Url("/")}).exitStatus, 22);
}

TEST(Fetch, FailuresExitWithTheirCodeAndSayWhy) {
    const auto refused = RunTool({"fetch", kNobody, "--json"});
    EXPECT_EQ(refused.exitStatus, 22);
    EXPECT_THAT(refused.error, AllOf(StartsWith("zrhttp: 22: "), HasSubstr("refused")));
    const json result = json::parse(refused.output);
    EXPECT_EQ(result["code"], 22);
    EXPECT_THAT(result["status"].get<std::string>(), HasSubstr("refused"));

    const auto malformed = RunTool({"fetch", "gopher://127.0.0.1/"});
    EXPECT_EQ(malformed.exitStatus, 23);
    EXPECT_THAT(malformed.error, HasSubstr("gopher"));
}

TEST(Fetch, OutputFileIsReplacedOnlyByACompletePage) {
    TestServer server;
    server.Set("/", Html("new"));
    const TemporaryHome home;
    home.WriteFile("out/page", "old");
    const std::string page = home.Path("out/page");
    chmod(page.c_str(), 0600);
    EXPECT_EQ(RunTool({"fetch", kNobody, "--output", page}).exitStatus, 22);
    EXPECT_EQ(home.ReadFile("out/page"), "old");

    symlink("page", home.Path("out/link").c_str());
    EXPECT_EQ(RunTool({"fetch", server.Url("/"), "--output", home.Path("out/link")}).exitStatus, 0);
    EXPECT_EQ(home.ReadFile("out/page"), "new");
    struct stat status {};
    stat(page.c_str(), &status);
    EXPECT_EQ(status.st_mode & 0777, 0600u);
    EXPECT_EQ(FilesIn(home, "out"), 2u);
}

TEST(Fetch, NothingIsSentWhenTheFileCannotBeWritten) {
    TestServer server;
    server.Set("/", Html("x"));
    const TemporaryHome home;
    const auto output =
        RunTool({"fetch", server.Url("/"), "--post", "pay=1", "--output", home.Path("none/page")});
    EXPECT_EQ(output.exitStatus, 1);
    EXPECT_THAT(output.error, HasSubstr("No such file or directory"));
    EXPECT_EQ(
        RunTool({"fetch", server.Url("/"), "--post", "pay=1", "--save", home.Path("")}).exitStatus,
        26);
    EXPECT_THAT(server.Requests(), ElementsAre());

    const auto full = RunTool({"fetch", server.Url("/"), "--output", "/dev/full"});
    EXPECT_EQ(full.exitStatus, 1);
    EXPECT_THAT(full.error, HasSubstr("No space left"));
}

TEST(Fetch, InterruptStopsCleanly) {
    const auto gate = std::make_shared<Gate>();
    TestServer server;
    test_support::Answer answer = Html("");
    answer.pieces = {"<p>", "</p>"};
    answer.pieceGate = gate;
    server.Set("/", answer);
    const TemporaryHome home;
    home.WriteFile("out/page", "old");
    for (const int signalNumber : {SIGINT, SIGTERM}) {
        const std::size_t before = server.Requests("/").size();
        ToolProcess tool({"fetch", server.Url("/"), "--output", home.Path("out/page"), "--json"});
        while (server.Requests("/").size() == before)
            std::this_thread::yield();
        tool.Signal(signalNumber);
        const auto run = tool.Wait();
        EXPECT_EQ(run.exitStatus, 28);
        EXPECT_THAT(run.error, HasSubstr("28: Stopped by an interrupt."));
        EXPECT_EQ(json::parse(run.output)["code"], 28);
    }
    EXPECT_EQ(home.ReadFile("out/page"), "old");
    EXPECT_EQ(FilesIn(home, "out"), 1u);
    gate->Open();
}

TEST(Fetch, ControlCharactersDoNotReachATerminal) {
    TestServer server;
    server.Set("/type", Bytes("application/\033[31mred", "x"));
    server.Set("/", Html("\033]0;title\007 \xC2\x9B"
                         "31m \xE2\x80\xAE right\r\nleft\rover\n"));
    const auto run = RunToolOnTerminal({"fetch", server.Url("/")});
    EXPECT_EQ(run.exitStatus, 0);
    EXPECT_THAT(run.output, HasSubstr("^[]0;title^G <U+009B>31m <U+202E> right"));
    EXPECT_THAT(run.output, HasSubstr("left^Mover"));

    EXPECT_THAT(RunTool({"fetch", server.Url("/type")}).error,
                AllOf(StartsWith("zrhttp: 22: "), Not(HasSubstr("\033"))));
    EXPECT_THAT(RunTool({"fetch", server.Url("/"), "--collect", "--json"}).output,
                AllOf(HasSubstr("\\u009b"), Not(HasSubstr("\xC2\x9B"))));
}

} // namespace
