#include "tools/ToolTest.h"

namespace {

ToolRun Form(Words words, std::string_view input = "") {
    words.insert(words.begin(), "form");
    return RunTool(words, input);
}

TEST(FormCommand, KeepsTheOrderOfTheCommandLineAcrossItsOptions) {
    const TemporaryHome home;
    home.WriteFile("doc.txt", "hallo\n%d");
    home.WriteFile("pin", "ge&heim\r\n");
    const std::string file = home.Path("doc.txt");
    const Words entries{
        "--field",  "b=x y=\xC3\x84",           "--file",           "d=" + file + ";text",
        "--secret", "pin=@" + home.Path("pin"), "--field=[a]=[1,2]"};
    const auto compose = [&](Words more) {
        more.insert(more.begin(), entries.begin(), entries.end());
        return Form(more);
    };
    const auto query = compose({"--as", "query"});
    EXPECT_EQ(query.output, "?b=x+y%3D%C4&d=hallo%0A%25d&pin=ge%26heim&[a]=%5B1%2C2%5D");
    EXPECT_EQ(query.error, "");

    const std::string body = "--Q1\r\nContent-Disposition: form-data; name=\"b\"\r\n\r\n"
                             "x y=\xC3\x84\r\n"
                             "--Q1\r\nContent-Disposition: form-data; name=\"d\"; "
                             "filename=\"doc.txt\"\r\nContent-Type: text/plain\r\n\r\n"
                             "hallo\n%d\r\n"
                             "--Q1\r\nContent-Disposition: form-data; name=\"pin\"\r\n\r\n"
                             "[...]\r\n"
                             "--Q1\r\nContent-Disposition: form-data; name=\"[a]\"\r\n\r\n"
                             "[1,2]\r\n--Q1--\r\n";
    EXPECT_EQ(
        compose({"--as", "multipart", "--boundary", "Q1", "--masked", "--with-header", "--utf8"})
            .output,
        "Content-Type: multipart/form-data; boundary=Q1\r\n\r\n" + body);
}

TEST(FormCommand, ANameGivenAgainReplacesItsValueInPlace) {
    const auto run = Form({"--field", "a=1", "--field", "b=2", "--field", "a=3", "--as",
                           "urlencoded", "--with-header"});
    EXPECT_EQ(run.output, "Content-Type: application/x-www-form-urlencoded\r\n\r\na=3&b=2");
    EXPECT_THAT(run.error, HasSubstr("'a' is given again"));
}

TEST(FormCommand, TheHeaderNamesTheBoundaryThatIsFoundForTheBody) {
    const TemporaryHome home;
    home.WriteFile("doc", "x");
    const auto run =
        Form({"--file", "d=" + home.Path("doc"), "--as", "multipart", "--with-header"});
    const std::string start = "Content-Type: multipart/form-data; boundary=";
    ASSERT_THAT(run.output, StartsWith(start));
    const std::string boundary = run.output.substr(start.size(), 21);
    EXPECT_THAT(boundary, MatchesRegex("[0-9A-Za-z]+"));
    EXPECT_THAT(run.output, AllOf(HasSubstr("\r\n\r\n--" + boundary + "\r\n"),
                                  EndsWith("\r\n--" + boundary + "--\r\n")));
}

TEST(FormCommand, ASecretIsTypedUnseen) {
    for (const auto& [keys, output, status] : {std::tuple{"4711\n", "pin: \r\npin=4711", 0},
                                               {"4711\x04", "pin: \r\npin=4711", 0},
                                               {"47\x03", "pin: \r\n", 128 + SIGINT},
                                               {"47\x1A\n", "pin: \r\n", 2}}) {
        ToolOnTerminal tool({"form", "--secret", "pin=@-", "--as", "urlencoded"});
        tool.TypeAfter("pin: ", keys);
        const auto run = tool.Wait();
        EXPECT_EQ(run.exitStatus, status) << run.output;
        EXPECT_THAT(run.output, StartsWith(output));
        EXPECT_TRUE(tool.IsEchoing());
    }
}

TEST(FormCommand, SecretsComeFromFilesAndStayOutOfMessages) {
    const auto inArgument = Form({"--secret", "pin=4711", "--as", "query"});
    EXPECT_EQ(inArgument.exitStatus, 2);
    EXPECT_THAT(inArgument.error, AllOf(HasSubstr("NAME=@FILE"), Not(HasSubstr("4711"))));

    const auto misspelt = Form({"--secrets", "pin=4711", "--as", "query", "--pin=4711"});
    EXPECT_THAT(misspelt.error, AllOf(HasSubstr("'--secrets'"), Not(HasSubstr("4711"))));

    EXPECT_EQ(Form({"--secret", "pin=@-", "--as", "query"}, "4711\n\n").output, "?pin=4711%0A");
    EXPECT_EQ(Form({"--secret", "pin=@-", "--as", "query", "--masked"}, "4711").output,
              "?pin=[...]");
    const auto foreign = Form({"--secret", "pin=@-", "--as", "query"}, "4711\xE6\x97\xA5");
    EXPECT_EQ(foreign.exitStatus, 2);
    EXPECT_THAT(foreign.error, AllOf(HasSubstr("--secret 'pin'"), Not(HasSubstr("4711"))));

    const TemporaryHome home;
    const std::string file = home.Path("body");
    EXPECT_EQ(Form({"--secret", "pin=@-", "--as", "query", "--output", file}, "1").exitStatus, 0);
    EXPECT_EQ(home.ReadFile("body"), "?pin=1");
    EXPECT_EQ(static_cast<unsigned>(std::filesystem::status(file).permissions()), 0600u);
}

TEST(FormCommand, BytesOfFilesAreNeverCutAtANul) {
    const TemporaryHome home;
    const std::string content("a\n\0b\xFF", 5);
    home.WriteFile("doc", content);
    const std::string file = "d=" + home.Path("doc");
    const auto whole = Form({"--file", file, "--as", "multipart", "--with-header"});
    const std::string start = "Content-Type: multipart/form-data; boundary=xxx_mp_boundary_xxx";
    EXPECT_THAT(whole.output, StartsWith(start + "\r\n\r\n--xxx_mp_boundary_xxx\r\n"));
    EXPECT_THAT(whole.output, EndsWith("name=\"d\"; filename=\"doc\"\r\nContent-Type: "
                                       "application/octet-stream\r\n\r\n" +
                                       content + "\r\n--xxx_mp_boundary_xxx--\r\n"));
    for (Words words : {Words{"query"}, {"urlencoded"}, {"multipart", "--boundary", "Q1"}}) {
        words.insert(words.begin(), {"--file", file, "--as"});
        const auto run = Form(words);
        EXPECT_EQ(run.exitStatus, 2);
        EXPECT_EQ(run.output, "");
        EXPECT_THAT(run.error, AllOf(HasSubstr(home.Path("doc")), HasSubstr("NUL bytes")));
    }
}

TEST(FormCommand, RefusesWhatCouldNotBeSentAsItWasMeant) {
    const TemporaryHome home;
    home.WriteFile("empty", "");
    const std::string path = home.Path();
    const std::pair<Words, std::string> calls[] = {
        {{"--as", "query"}, "the form is empty"},
        {{"--field", "a=1"}, "--as"},
        {{"--field", "=a", "--as", "query"}, "NAME=VALUE"},
        {{"--field", "a&b=1", "--as", "query"}, "'a&b'"},
        {{"--field", "a\r\nX: y=1", "--as", "multipart", "--boundary", "Q"}, "would end it"},
        {{"--field", "a=\xE6\x97\xA5", "--as", "query"}, "--field 'a': contains characters"},
        {{"--secret", "a=@-", "--secret", "b=@-", "--as", "query"}, "once only"},
        {{"--file", "a=" + path + "/none", "--as", "query"}, "/none': No such file"},
        {{"--file", "a=" + path + "/empty", "--as", "query"}, "/empty' is empty"},
        {{"--file", "a=" + path + "/empty;image/png", "--as", "query"}, "unknown type 'image/png'"},
        {{"--file", "a=" + path, "--as", "query"}, "directory"},
        {{"--file", "a=/dev/null", "--as", "query"}, "no regular file"},
        {{"--file", "a=c:\\..\\x", "--as", "query"}, "cannot read 'c:\\..\\x'"},
        {{"--field", "a=..Q..", "--as", "multipart", "--boundary", "Q"}, "'Q' occurs in 'a'"},
        {{"--field", "a=1", "--as", "multipart", "--boundary", "a b"}, "--boundary: expected"},
        {{"--field", "a=1", "--as", "query", "--boundary", "Q"}, "--as multipart only"},
        {{"--field", "a=1", "--as", "query", "--with-header"}, "no Content-Type"},
    };
    for (const auto& [words, text] : calls) {
        const auto run = Form(words, "x");
        EXPECT_EQ(run.exitStatus, 2) << text;
        EXPECT_EQ(run.output, "") << text;
        EXPECT_THAT(run.error, HasSubstr(text));
    }
}

TEST(HeadersCommand, PrintsTheBlockInTheOrderAskedFor) {
    const Words lines{"headers", "--add", "Accept: */*", "--add", "Host: a", "--add", "Accept: b"};
    EXPECT_EQ(RunTool(lines).output, "Accept: b\r\nHost: a\r\n\r\n");
    Words more = lines;
    more.insert(more.end(), {"--order", "Host", "--order", "None", "--keep-existing"});
    EXPECT_EQ(RunTool(more).output, "Host: a\r\nAccept: */*\r\n\r\n");
}

TEST(HeadersCommand, ABadLineIsNamedWithoutItsValue) {
    const std::pair<std::string, std::string> lines[] = {
        {"X-Key geheim", "--add number 2: expected \"Name: value\""},
        {"X geheim: y", "--add number 2: expected \"Name: value\""},
        {"X-Key: geheim\r\nY: z", "'X-Key': contains a line break"},
        {"X-Empty: ", "'X-Empty': has no value"},
    };
    for (const auto& [line, text] : lines) {
        const auto run = RunTool({"headers", "--add", "A: 1", "--add", line});
        EXPECT_EQ(run.exitStatus, 2) << line;
        EXPECT_EQ(run.output, "");
        EXPECT_THAT(run.error, AllOf(HasSubstr(text), Not(HasSubstr("geheim"))));
    }
}

TEST(EncodingCommands, ConvertArgumentsAndExactBytes) {
    EXPECT_EQ(RunTool({"encode", "a b&c.\xC3\xA4"}).output, "a+b%26c%2E%E4\n");
    EXPECT_EQ(RunTool({"encode"}, std::string_view("a\0\xC3\n", 4)).output, "a%00%C3%0A");
    EXPECT_EQ(RunTool({"encode", "\xFC"}).exitStatus, 2);
    EXPECT_EQ(RunTool({"to-utf8"}, std::string_view("\xFC\0\x80", 3)).output,
              std::string("\xC3\xBC\0\xC2\x80", 5));
    EXPECT_EQ(RunTool({"from-utf8"}, "\xC3\xBC\xE2\x82\xAC\xC5\x81").output, "\xFC\x80?");
}

TEST(UserAgentCommand, PrintsTheClientsName) {
    EXPECT_THAT(RunTool({"user-agent"}).output,
                MatchesRegex("VELTRUM e-banking Software [(].*[)]\n"));
}

} // namespace
