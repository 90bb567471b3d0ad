// The ways to a browser: in this program, hidden in it, an application of its own. The builtin
// engine stands behind all of them, so that no Chromium is needed.

#include "tools/ToolTest.h"

namespace {

Words FetchByApplication(const std::string& url, Words options) {
    options.insert(options.begin(), {"fetch", url, "--via", "application", "--engine", "builtin"});
    return options;
}

TEST(FetchVia, EveryWayLoadsThePageAndPostsWithTheEngineAskedFor) {
    TestServer server;
    server.Set("/", Html("<p>\r\n\xFC"));
    const TemporaryHome home;
    const ScopedVariable browser("ZRHTTP_BROWSER", home.Path("none").c_str());
    for (const char* via : {"control", "hidden", "application"}) {
        const std::string url = server.Url("/");
        const auto run =
            RunTool({"fetch", url, "--via", via, "--engine", "builtin", "--post", "a=1"});
        EXPECT_EQ(run.exitStatus, 0) << via << run.error;
        EXPECT_EQ(run.output, "<p>\r\n\xFC") << via;
        EXPECT_EQ(server.Requests("/").back().body, "a=1") << via;

        home.WriteFile("page", "old");
        for (const char* option : {"--output", "--save"}) {
            const auto none = RunTool({"fetch", server.Url("/none"), "--via", via, "--engine",
                                       "builtin", "--json", "--fail", option, home.Path("page")});
            EXPECT_EQ(none.exitStatus, 1) << via;
            EXPECT_EQ(none.error, "zrhttp: 404 Not Found\n") << via;
            EXPECT_EQ(json::parse(none.output)["http_status"], 404) << via;
            EXPECT_EQ(home.ReadFile("page"), "old") << via;
        }

        const auto chromium = RunTool({"fetch", url, "--via", via, "--engine", "chromium"});
        EXPECT_EQ(chromium.exitStatus, 20) << via;
        EXPECT_THAT(chromium.error, HasSubstr("zrhttp doctor")) << via;
    }
    EXPECT_EQ(RunTool({"fetch", server.Url("/"), "--via", "application"}).exitStatus, 20);
    const ScopedVariable engine("ZRHTTP_APPLICATION", "builtin");
    EXPECT_EQ(RunTool({"fetch", server.Url("/"), "--via", "application"}).exitStatus, 0);
}

TEST(FetchVia, PrefixesSimulateAndRecord) {
    TestServer server;
    server.Set("/sim", Html("simulated"));
    const TemporaryHome home;
    const std::string folder = "drive_c/HttpGet_Simulate/";
    home.WriteFile(folder + "Simulate.ini",
                   "[Rule1]\nURL=http://bank.invalid/\nSimPage=" + server.Url("/sim") + "\n");
    const auto run =
        RunTool(FetchByApplication("SIM:SAVE:http://bank.invalid/", {"--post", "a=1"}));
    EXPECT_EQ(run.exitStatus, 0) << run.error;
    EXPECT_EQ(run.output, "simulated");
    EXPECT_EQ(server.Requests("/sim").at(0).method, "GET");
    EXPECT_THAT(home.ReadFile(folder + "Saved.ini").value_or(""),
                AllOf(HasSubstr("OrigPostData_BeforeSim={a=1}"), HasSubstr("RetCode=0")));
}

TEST(FetchVia, InterruptStopsAnApplication) {
    const auto gate = std::make_shared<Gate>();
    TestServer server;
    Answer answer = Html("");
    answer.pieces = {"<p>", "</p>"};
    answer.pieceGate = gate;
    server.Set("/", answer);
    ToolProcess tool(FetchByApplication(server.Url("/"), {"--collect"}));
    while (server.Requests("/").empty())
        std::this_thread::yield();
    tool.Signal(SIGINT);
    EXPECT_EQ(tool.Wait().exitStatus, 128 + SIGINT);
    gate->Open();
}

} // namespace
