// What README and the documents show works: examples, snippets, command lines.
#include <algorithm>
#include <filesystem>
#include <fstream>
#include <regex>
#include <sstream>

#include <gmock/gmock.h>
#include <sys/wait.h>

#include "support/TemporaryHome.h"
#include "support/TestServer.h"

using namespace test_support;
using testing::AllOf;
using testing::HasSubstr;

namespace {

const std::string kProject = PROJECT_FOLDER;
const std::string kExamples = EXAMPLES_FOLDER;

std::string ContentOf(const std::string& fileName) {
    std::ifstream file(fileName, std::ios::binary);
    EXPECT_TRUE(file) << fileName;
    return {std::istreambuf_iterator<char>(file), {}};
}

// Each line without the blanks around it, each with a line end before and behind it.
std::string Unindented(const std::string& text) {
    std::istringstream lines(text);
    std::string result = "\n";
    for (std::string line; std::getline(lines, line);) {
        const std::size_t begin = line.find_first_not_of(" \t");
        result += (begin == std::string::npos ? "" : line.substr(begin)) + "\n";
    }
    return result;
}

class Documents : public testing::Test {
protected:
    Documents() {
        const std::string page = "<p>Guten Tag<!-- BRIGHTRELAY STATUS=0 TEXT=\"Alles gut\" "
                                 "MSG=\"Auftrag angenommen\" -->";
        for (const char* path : {"/konto.html", "/login", "/list.pdf"})
            m_server.Set(path, Html(page));
        m_home.WriteFile("work/pin", "1234");
        m_home.WriteFile("work/login.txt", "user=anna");
        m_home.WriteFile("work/konten.csv", "1;2");
        m_home.WriteFile("work/page.html", page);
        std::filesystem::create_directories(m_home.Path("drive_c/HttpGet_Simulate"));
    }
    // The exit status of a shell's command in the work directory; what it prints into m_output.
    int Run(const std::string& command) {
        const std::string tools = std::filesystem::path(ZRHTTP_TOOL).parent_path();
        const std::string file = m_home.Path("output");
        const std::string line = "cd '" + m_home.Path("work") + "' && PATH='" + tools +
                                 "':$PATH no_proxy=127.0.0.1 && export PATH no_proxy && { " +
                                 command + "\n} >'" + file + "' 2>&1 </dev/null";
        const int status = std::system(line.c_str());
        m_output = ContentOf(file);
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }
    int RunExample(const std::string& name, const std::string& arguments) {
        return Run("'" + kExamples + "/" + name + "' " + arguments);
    }

    const TemporaryHome m_home;
    const ScopedVariable m_application{"ZRHTTP_APPLICATION", "builtin"};
    TestServer m_server;
    std::string m_output;
};

// The commands behind "$ ", with the lines that a "|" at the end of one goes on to.
std::vector<std::string> CommandsOf(const std::string& document) {
    std::istringstream lines(ContentOf(kProject + "/" + document));
    std::vector<std::string> commands;
    bool goesOn = false;
    for (std::string line; std::getline(lines, line);) {
        if (goesOn)
            commands.back() += line;
        else if (line.starts_with("    $ "))
            commands.push_back(line.substr(6));
        else
            continue;
        goesOn = line.ends_with("|");
    }
    return commands;
}

} // namespace

TEST_F(Documents, ExamplesDoWhatTheySay) {
    const std::string url = "'" + m_server.Url("/konto.html") + "' ";
    EXPECT_EQ(RunExample("fetch", url), 0);
    EXPECT_THAT(m_output, AllOf(HasSubstr("/konto.html\n"), HasSubstr("<p>Guten Tag")));
    EXPECT_EQ(RunExample("fetch", "http://127.0.0.1:1/"), 1);
    EXPECT_THAT(m_output, HasSubstr("fetch: Reading failed."));
    EXPECT_EQ(RunExample("form", "'" + m_server.Url("/login") + "' pin"), 0);
    EXPECT_THAT(m_output, HasSubstr("pin=[...]"));
    EXPECT_EQ(m_server.Requests("/login").at(0).body, "empfaenger=M%FCller+%26+Sohn&pin=1234");
    EXPECT_EQ(RunExample("collect", url + "1"), 0) << m_output;
    EXPECT_THAT(m_output, HasSubstr("<p>Guten Tag"));
    EXPECT_EQ(RunExample("download", url + "file"), 0) << m_output;
    EXPECT_THAT(ContentOf(m_home.Path("work/file")), HasSubstr("<p>Guten Tag"));
    EXPECT_EQ(RunExample("reply", "page.html"), 0);
    EXPECT_EQ(m_output, "status 0: Alles gut\nGuten Tag\n\n");
    EXPECT_EQ(RunExample("simulate", "'" + m_home.Path("work/page.html") + "'"), 0) << m_output;
    EXPECT_THAT(m_output, HasSubstr("<p>Guten Tag"));
}

TEST_F(Documents, SnippetsComeFromTheExamples) {
    std::string examples;
    for (const auto& entry : std::filesystem::directory_iterator(kProject + "/examples"))
        if (entry.path().extension() == ".cpp") {
            const std::string source = ContentOf(entry.path());
            EXPECT_LT(std::ranges::count(source, '\n'), 80) << entry.path();
            examples += Unindented(source);
        }
    int count = 0;
    for (const char* document : {"README.md", "docs/index.md"}) {
        const std::string text = ContentOf(kProject + "/" + document);
        const std::regex block("```cpp\n([^`]*)```");
        for (auto found = std::sregex_iterator(text.begin(), text.end(), block);
             found != std::sregex_iterator(); ++found, ++count)
            EXPECT_THAT(examples, HasSubstr(Unindented((*found)[1])));
    }
    EXPECT_GE(count, 7);
}

TEST_F(Documents, CommandsRun) {
    const std::regex site("https://www\\.example\\.(test|org)");
    for (const char* document : {"README.md", "docs/index.md"}) {
        const std::vector<std::string> commands = CommandsOf(document);
        EXPECT_GE(commands.size(), 6u) << document;
        for (std::string command : commands) {
            command = std::regex_replace(command, site, m_server.Url(""));
            command = std::regex_replace(command, std::regex("build/release/tools/"), "");
            EXPECT_EQ(Run(command), 0) << command << "\n" << m_output;
        }
    }
}
