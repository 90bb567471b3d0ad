// The ways to a browser: in this program, hidden in it, an application of its own. The builtin
// engine stands behind all of them, so that no Chromium is needed.

#include <csignal>
#include <memory>
#include <thread>

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include "support/RunTool.h"
#include "support/ScopedVariable.h"
#include "support/TemporaryHome.h"
#include "support/TestServer.h"

namespace {

using nlohmann::json;
using test_support::Gate;
using test_support::Html;
using test_support::RunTool;
using test_support::ScopedVariable;
using test_support::TemporaryHome;
using test_support::TestServer;
using test_support::ToolProcess;
using testing::AllOf;
using testing::HasSubstr;

const std::vector<std::string> kApplication{"--via", "application", "--engine", "builtin"};

std::vector<std::string> Fetch(const std::string& url, std::vector<std::string> options) {
    options.insert(options.begin(), {"fetch", url});
    options.insert(options.end(), kApplication.begin(), kApplication.end());
    return options;
}

TEST(FetchVia, EveryWayLoadsThePageAndPosts) {
    TestServer server;
    server.Set("/", Html("<p>\r\n\xFC"));
    for (const char* via : {"control", "hidden", "application"}) {
        const auto run = RunTool(
            {"fetch", server.Url("/"), "--via", via, "--engine", "builtin", "--post", "a=1"});
        EXPECT_EQ(run.exitStatus, 0) << via << run.error;
        EXPECT_EQ(run.output, "<p>\r\n\xFC") << via;
        EXPECT_EQ(server.Requests("/").back().body, "a=1") << via;
    }
}

TEST(FetchVia, EngineAndSettingSayWhichBrowser) {
    TestServer server;
    server.Set("/", Html("x"));
    const TemporaryHome home;
    const ScopedVariable browser("ZRHTTP_BROWSER", home.Path("none").c_str());
    for (const char* via : {"control", "hidden", "application"}) {
        const auto run = RunTool({"fetch", server.Url("/"), "--via", via, "--engine", "chromium"});
        EXPECT_EQ(run.exitStatus, 20) << via;
        EXPECT_THAT(run.error, HasSubstr("zrhttp doctor")) << via;
    }
    EXPECT_EQ(RunTool({"fetch", server.Url("/"), "--via", "application"}).exitStatus, 20);
    const ScopedVariable engine("ZRHTTP_APPLICATION", "builtin");
    EXPECT_EQ(RunTool({"fetch", server.Url("/"), "--via", "application"}).exitStatus, 0);
}

TEST(FetchVia, ApplicationCollectsUntilItIsIdle) {
    TestServer server;
    server.Set("/", Html("<frameset><frame src=a><frame src=b></frameset>"));
    server.Set("/a", Html("links \xFC"));
    server.Set("/b", Html("<meta http-equiv=refresh content='0;url=c'>"));
    server.Set("/c", Html("rechts"));
    const auto run =
        RunTool(Fetch(server.Url("/"), {"--collect", "--json", "--idle-timeout", "1000"}));
    EXPECT_EQ(run.exitStatus, 0) << run.error;
    const json result = json::parse(run.output);
    EXPECT_EQ(result["code"], 0);
    EXPECT_EQ(result["error"], "");
    std::vector<std::string> urls;
    for (const json& page : result["pages"])
        urls.push_back(page["url"]);
    EXPECT_THAT(urls, testing::UnorderedElementsAre(server.Url("/"), server.Url("/a"),
                                                    server.Url("/b"), server.Url("/c")));
    EXPECT_EQ(
        RunTool(Fetch("http://127.0.0.1:1/", {"--collect", "--idle-timeout", "1"})).exitStatus, 22);
}

TEST(FetchVia, PrefixesSimulateAndRecord) {
    TestServer server;
    server.Set("/sim", Html("simulated"));
    const TemporaryHome home;
    const std::string folder = "drive_c/HttpGet_Simulate/";
    home.WriteFile(folder + "Simulate.ini",
                   "[Rule1]\nURL=http://bank.invalid/\nSimPage=" + server.Url("/sim") + "\n");
    const auto run = RunTool(Fetch("SIM:SAVE:http://bank.invalid/", {"--post", "a=1"}));
    EXPECT_EQ(run.exitStatus, 0) << run.error;
    EXPECT_EQ(run.output, "simulated");
    EXPECT_EQ(server.Requests("/sim").at(0).method, "GET");
    EXPECT_THAT(home.ReadFile(folder + "Saved.ini").value_or(""),
                AllOf(HasSubstr("OrigPostData_BeforeSim={a=1}"), HasSubstr("RetCode=0")));
}

TEST(FetchVia, InterruptStopsAnApplication) {
    const auto gate = std::make_shared<Gate>();
    TestServer server;
    test_support::Answer answer = Html("");
    answer.pieces = {"<p>", "</p>"};
    answer.pieceGate = gate;
    server.Set("/", answer);
    ToolProcess tool(Fetch(server.Url("/"), {"--collect"}));
    while (server.Requests("/").empty())
        std::this_thread::yield();
    tool.Signal(SIGINT);
    EXPECT_EQ(tool.Wait().exitStatus, 28);
    gate->Open();
}

} // namespace
