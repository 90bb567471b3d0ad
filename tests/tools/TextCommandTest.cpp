#include "tools/ToolTest.h"

namespace {

constexpr std::string_view kUtf8 = "Gr\xC3\xBC\xC3\x9F";
constexpr std::string_view kLatin1 = "Gr\xFC\xDF";

std::string Page(std::string_view head, std::string_view body) {
    return "<html><head><title>T</title>" + std::string(head) + "</head><body>" +
           std::string(body) + "</body></html>";
}

std::string Utf16(std::string_view ascii, bool isBigEndian) {
    std::string text = isBigEndian ? "\xFE\xFF" : "\xFF\xFE";
    for (const char ch : ascii)
        text += isBigEndian ? std::string{'\0', ch} : std::string{ch, '\0'};
    return text;
}

TEST(TextCommand, OneKeyEndsWhatIsTyped) {
    ToolOnTerminal tool({"text", "-"});
    tool.TypeAfter("", "<p>a\n\x04");
    tool.TypeAfter("<p>a\r\na\r\n", "");
    EXPECT_EQ(tool.Wait().exitStatus, 0);
}

TEST(TextCommand, UmlautsComeOutRightFromPagesOfAnyCharacterSet) {
    const std::string late(1024, ' ');
    const std::pair<std::string, std::string_view> pages[] = {
        {Page("", kUtf8), kUtf8},
        {Page("<meta charset=iso-8859-1>", kLatin1), kUtf8},
        {Page("<META content='text/html; charset = \"UTF-8\"' http-equiv=Content-Type>", kUtf8),
         kUtf8},
        {Page("<!-- <meta charset=koi8-r> --><a title='><meta charset=koi8-r>'>"
              "<meta/charset = 'L9' >",
              "\xA4"),
         "\xE2\x82\xAC"},
        {Page("<meta charset=klingon><meta charset=windows-1251>", "\xC0"), "\xD0\x90"},
        {Page("<meta charset=utf-16>", kUtf8), kUtf8},
        {Page("<meta content='charset=koi8-r'>" + late + "<meta charset=koi8-r>", kLatin1), kUtf8},
        {Page("<meta charset=latin1>", kUtf8), "Gr\xC3\x83\xC2\xBC\xC3\x83\xC5\xB8"},
        {"\xEF\xBB\xBF" + Page("<meta charset=latin1>", kUtf8), kUtf8},
        {Utf16("Gr\xFC\xDF", false), kUtf8},
        {Utf16("Gr\xFC\xDF&auml;", true), "Gr\xC3\xBC\xC3\x9F\xC3\xA4"},
        {Page("<meta charset=utf-8>", "a\xFFz"), "a\xEF\xBF\xBDz"},
        {"\xC5\x81\xC3\xB3 &eacute;&#233; \xF0\x9F\x98\x80",
         "\xC5\x81\xC3\xB3 \xC3\xA9\xC3\xA9 \xF0\x9F\x98\x80"},
        // Controls in the page are not taken for kept characters.
        {"a\x02\x30\x31\x34\x31\x03z &#2;zz", "a0141\x03z zz"},
    };
    for (const auto& [page, text] : pages) {
        const auto run = RunTool({"text"}, page);
        EXPECT_EQ(run.output, std::string(text) + "\n") << page;
        EXPECT_EQ(run.error, "");
    }
    EXPECT_EQ(
        RunTool({"text", "--charset", " Latin1 "}, Page("<meta charset=utf-8>", kLatin1)).output,
        std::string(kUtf8) + "\n");
}

TEST(TextCommand, WritesInTheEncodingOfTheLocale) {
    const std::string page = std::string(kUtf8) + " \xE2\x82\xAC";
    {
        const ScopedVariable locale("LC_ALL", "de_DE.ISO-8859-1");
        EXPECT_EQ(RunTool({"text"}, page).output, std::string(kLatin1) + " ?\n");
        EXPECT_EQ(RunTool({"encode", "\xFC"}).output, "%FC\n");
    }
    for (const char* name : {"C", "POSIX", "C.UTF-8", "xx_XX.none"}) {
        const ScopedVariable locale("LC_ALL", name);
        EXPECT_EQ(RunTool({"text"}, page).output, page + "\n") << name;
    }
}

TEST(TextCommand, ReadsAndWritesFiles) {
    const TemporaryHome home;
    home.WriteFile("page", "<h1>A</h1>\n\n\n<p>B</p>");
    const std::string page = home.Path("page");
    EXPECT_EQ(RunTool({"text", page}).output, "A\n\nB\n");
    EXPECT_EQ(RunTool({"text", page, "--compact", "--output", home.Path("out")}).output, "");
    EXPECT_EQ(home.ReadFile("out"), "A\nB\n");
    EXPECT_EQ(RunTool({"text", page, "--output", home.Path("no/out")}).exitStatus, 1);

    const auto missing = RunTool({"text", home.Path("none")});
    EXPECT_EQ(missing.exitStatus, 2);
    EXPECT_THAT(missing.error, HasSubstr("/none': No such file"));
    const auto charset = RunTool({"text", "--charset", "klingon"}, "x");
    EXPECT_EQ(charset.exitStatus, 2);
    EXPECT_THAT(charset.error, HasSubstr("unknown character set 'klingon'"));
}

TEST(TextCommand, FetchReducesPagesTheSameWay) {
    TestServer server;
    server.Set("/", Html(Page("<script>x</script>", "<p>" + std::string(kLatin1) + "\033[1m")));
    const std::string text = std::string(kUtf8) + "\033[1m\n";
    const TemporaryHome home;
    const std::string url = server.Url("/");
    RunTool({"fetch", url, "--text", "--output", home.Path("out")});
    EXPECT_EQ(home.ReadFile("out"), text);
    const auto run = RunTool({"fetch", url, "--text", "--collect", "--json"});
    EXPECT_EQ(json::parse(run.output)["pages"][0]["text"], text);
    EXPECT_THAT(RunToolOnTerminal({"fetch", url, "--text"}).output,
                AllOf(HasSubstr(std::string(kUtf8) + "^[[1m"), Not(HasSubstr("\033[1m"))));
    EXPECT_EQ(RunTool({"fetch", url, "--text", "--save", "f"}).exitStatus, 2);
}

TEST(ReplyCommand, PrintsValuesOfTheHiddenComment) {
    const std::string comment = "<!-- BRIGHTRELAY STATUS=00 MSG=\"Alles gut\" LAST=1-->";
    const std::string page = "<html>\r\n" + comment + "</html>";
    EXPECT_EQ(RunTool({"reply"}, page).output, comment + "\n");
    EXPECT_EQ(RunTool({"reply", "--value", "MSG", "--quoted"}, page).output, "Alles gut\n");
    EXPECT_EQ(RunTool({"reply", "--value", "MSG"}, page).output, "\"Alles\n");
    const auto last = RunTool({"reply", "--value", "LAST"}, page);
    EXPECT_EQ(last.exitStatus, 1);
    EXPECT_EQ(last.output, "");
    EXPECT_THAT(last.error, HasSubstr("no plain value 'LAST'"));

    EXPECT_EQ(RunTool({"reply", "--status"}, "<!--BRIGHTRELAY STATUS=0 -->").exitStatus, 0);
    const auto failed = RunTool({"reply", "--status"}, page);
    EXPECT_EQ(failed.exitStatus, 1);
    EXPECT_EQ(failed.output, "00\n");
    const auto none = RunTool({"reply"}, "<html>");
    EXPECT_EQ(none.exitStatus, 1);
    EXPECT_THAT(none.error, HasSubstr("Cannot find tag <!-- BRIGHTRELAY "));
    EXPECT_EQ(RunTool({"reply", "--value", "A", "--status"}, "").exitStatus, 2);
}

} // namespace
