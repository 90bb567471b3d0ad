#include "tools/ToolTest.h"

namespace {

TEST(Usage, VersionAndHelpGoToStandardOutput) {
    EXPECT_THAT(RunTool({"version"}).output, StartsWith("zrhttp "));
    EXPECT_THAT(RunTool({"version", "--json"}).output,
                AllOf(StartsWith("{\"name\":\"zrhttp\",\"version\":\""), HasSubstr("\"SQLite\":")));
    const auto help = RunTool({"fetch", "--help"});
    EXPECT_EQ(help.exitStatus, 0);
    EXPECT_THAT(help.output, AllOf(HasSubstr("--post-file"), HasSubstr("Exit status")));
    EXPECT_EQ(help.error, "");
}

TEST(Usage, WrongCallsEndWithStatus2AndSayWhatIsWrong) {
    const std::string url = "http://127.0.0.1:1/";
    const std::pair<Words, std::string> calls[] = {
        {{}, "no subcommand"},
        {{"fetsh", "a"}, "unexpected argument 'fetsh'"},
        {{"fetch"}, "URL is required"},
        {{"fetch", url, "stray"}, "it is not shown"},
        {{"fetch", "http://127.0.0.1:1/\r\n"}, "control character"},
        {{"fetch", url, "--bogus"}, "--bogus"},
        {{"fetch", url, "--via", "hidden", "--visible"}, "--visible: not possible"},
        {{"fetch", url, "--via", "hidden", "--collect"}, "--collect: not possible"},
        {{"fetch", url, "--via", "application", "--collect", "--idle-timeout", "0"},
         "--idle-timeout"},
        {{"fetch", "SIM:" + url}, "need --via application"},
        {{"fetch", "SIM:SAVE:" + url, "--via", "application", "--collect"}, "not recorded"},
        {{"fetch", url, "--engine", "lynx"}, "lynx"},
        {{"fetch", url, "--timeout", "4294967296"}, "--timeout"},
        {{"fetch", url, "--post", "a", "--post-file", "b"}, "excludes"},
        {{"fetch", url, "--post", "\xE6\x97\xA5"}, "code page 1252"},
        {{"fetch", url, "--post", "\xFC"}, "invalid UTF-8"},
        {{"fetch", url, "--post-file", "-"}, "empty"},
        {{"fetch", url, "--post-file", "/nonexistent"}, "'/nonexistent': No such file"},
        {{"fetch", url, "--post-file", "/"}, "directory"},
        {{"fetch", url, "--header", "A: b"}, "with --post"},
        {{"fetch", url, "--post", "a", "--header", "Two words: b"}, "Name: value"},
        {{"fetch", url, "--post", "a", "--header", "A: b\nCookie: c"}, "line break"},
        {{"fetch", url, "--content-type", "x\\y"}, "--content-type"},
        {{"fetch", url, "--json", "--output", "-"}, "--output"},
    };
    for (const auto& [arguments, text] : calls) {
        const auto run = RunTool(arguments);
        EXPECT_EQ(run.exitStatus, 2) << text;
        EXPECT_EQ(run.output, "") << text;
        EXPECT_THAT(run.error, AllOf(StartsWith("zrhttp: "), HasSubstr(text)));
    }
}

} // namespace
