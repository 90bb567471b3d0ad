#include <ZrHbErrorHandling.h>

#include <map>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include <platform/CodePage.h>
#include <platform/Diagnostics.h>
#include <platform/Resources.h>

#include "support/TemporaryHome.h"

namespace {

using test_support::TemporaryHome;

constexpr const char* kOverflow = "*** _LogMsg: Internal Error: Buffer not large enough!";

std::string Utf8(const CString& text) {
    return platform::Utf8FromAnsi(text.View());
}

// The log's lines without their times.
std::vector<std::string> LogLines(const TemporaryHome& home) {
    const std::string log = home.ReadFile("log/zrhttpbase3.log").value_or("");
    std::vector<std::string> lines;
    for (std::size_t begin = 0, end; (end = log.find('\n', begin)) != std::string::npos;
         begin = end + 1) {
        const std::string line = log.substr(begin, end - begin);
        lines.push_back(line.substr(line.find('\t') + 1));
    }
    return lines;
}

std::string Expected(const char* group, const char* place, const std::string& text) {
    const std::string application = AfxGetModuleState()->m_strCurrentAppName.GetString();
    return std::string("group ") + group + "\terror\t" + place + "\t" + application + ": " + text;
}

// Runs first: nothing has noted a location yet.
TEST(ErrorHandling, ARecordCarriesTheLastLocationNoted) {
    const TemporaryHome home;
    CZrHbErrorHandling::__ZrHb_WriteErrorText(eAppGroup_1, "none");
    {
        std::string file = "/src/getter/First.cpp";
        CZrHbErrorHandling::__ZrHb_SetParams(file.c_str(), 12);
        file.assign(file.size(), 'x'); // the name is copied
    }
    CZrHbErrorHandling::__ZrHb_WriteErrorText_Fmt(eAppGroup_2, "%s %d", "a", 1);
    CZrHbErrorHandling::__ZrHb_WriteErrorText(eAppGroup_3, "100%s %n %d");
    EXPECT_EQ(LogLines(home), (std::vector<std::string>{
                                  Expected("1", ":0", "none"),
                                  Expected("2", "First.cpp:12", "a 1"),
                                  Expected("3", "First.cpp:12", "100%s %n %d"),
                              }));
}

TEST(ErrorHandling, TextsThatDoNotFitAreReplacedAsAWhole) {
    const std::string longest(10'239, 'a');
    EXPECT_EQ(CZrHbErrorHandling::CSFmt("%s", longest.c_str()), longest.c_str());
    EXPECT_EQ(CZrHbErrorHandling::CSFmt("%sb", longest.c_str()), kOverflow);
    EXPECT_EQ(CZrHbErrorHandling::CSFmt("%d%%-%s", -5, ""), "-5%-");

    const TemporaryHome home;
    CZrHbErrorHandling::__ZrHb_SetParams("x.cpp", 1);
    CZrHbErrorHandling::__ZrHb_WriteErrorText(eAppGroup_1, (longest + "b").c_str());
    CZrHbErrorHandling::__ZrHb_WriteErrorText(eAppGroup_1, longest.c_str());
    EXPECT_EQ(LogLines(home), (std::vector<std::string>{Expected("1", "x.cpp:1", kOverflow),
                                                        Expected("1", "x.cpp:1", longest)}));
}

TEST(ErrorHandling, LoadsTheLibrarysTextsInTheAnsiCodePage) {
    EXPECT_EQ(CZrHbErrorHandling::LoadStringAndGet(3), "M\xF6glicher Grund:\n");
    const std::map<unsigned, std::string> table = {
        {1, "\n\nBitte überprüfen Sie Ihre Internetverbindung."},
        {2, "Der Datei Download ist fehlgeschlagen!\n\n"},
        {101, "Mögliche Ursachen:"},
        {102, "Keine Verbindung ins Internet"},
        {103, "Firewall oder Security-Programme falsch konfiguriert"},
        {104, "Ungenügende Einstellungen des Internet-Explorer's"},
        {105, "Automatische Cookiebehandlung ausgeschaltet"},
        {106, "Installierte Toolbars (Yahoo!, Bluewin, Google, MSN, Ezilon usw.)"},
        {107, "Installierte Popupblocker (Internet Explorer, CleanMyPC, Companion usw.)"},
        {108, "Ihr Finanzinstitut online"}};
    for (const auto& [id, text] : table)
        EXPECT_EQ(Utf8(CZrHbErrorHandling::LoadStringAndGet(id)), text) << id;
    EXPECT_EQ(CZrHbErrorHandling::LoadStringAndGet(9999),
              "Internal Error: LoadString(9999) failed.");
    EXPECT_EQ(CZrHbErrorHandling::LoadStringAndGet(0xFFFFFFFFu),
              "Internal Error: LoadString(-1) failed.");
}

TEST(ErrorHandling, ServesSeveralThreads) {
    const TemporaryHome home;
    std::vector<std::thread> threads;
    for (int number = 0; number < 4; ++number) {
        threads.emplace_back([] {
            for (int i = 0; i < 50; ++i) {
                CZrHbErrorHandling::__ZrHb_SetParams("thread.cpp", 7);
                CZrHbErrorHandling::__ZrHb_WriteErrorText(eAppGroup_1, "text");
                EXPECT_EQ(CZrHbErrorHandling::LoadStringAndGet(108), "Ihr Finanzinstitut online");
            }
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    const auto lines = LogLines(home);
    EXPECT_EQ(lines.size(), 200u);
    for (const std::string& line : lines)
        EXPECT_EQ(line, Expected("1", "thread.cpp:7", "text"));
}

// Both hold from load time on, without a call into the library.
TEST(LibraryModule, RegistersItsTextsAndItsLogWhenItIsLoaded) {
    CString text;
    EXPECT_TRUE(text.LoadString(102));
    EXPECT_EQ(text, "Keine Verbindung ins Internet");

    const TemporaryHome home;
    platform::ReportDiagnostic(platform::Severity::failure, "/a/Store.cpp", 5, "moved aside");
    platform::ReportDiagnostic(platform::Severity::trace, "/a/Store.cpp", 6, "noted");
    EXPECT_EQ(LogLines(home), (std::vector<std::string>{"group 2\terror\tStore.cpp:5\tmoved aside",
                                                        "group 2\ttrace\tStore.cpp:6\tnoted"}));
}

} // namespace
