#include <ZrHbErrorHandling.h>

#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>
#include <platform/Diagnostics.h>
#include <platform/Resources.h>

#include "support/TemporaryHome.h"

namespace {

using Lines = std::vector<std::string>;

class ErrorHandling : public testing::Test {
protected:
    // The log's lines without their times.
    Lines Log() const {
        std::istringstream log(home.ReadFile("log/zrhttpbase3.log").value_or(""));
        Lines lines;
        for (std::string line; std::getline(log, line);)
            lines.push_back(line.substr(line.find('\t') + 1));
        return lines;
    }
    static std::string Line(const std::string& group, const char* place, const std::string& text) {
        const std::string application = AfxGetModuleState()->m_strCurrentAppName.GetString();
        return "group " + group + "\terror\t" + place + "\t" + application + ": " + text;
    }

    test_support::TemporaryHome home;
};

// Runs first: nothing has noted a location yet.
TEST_F(ErrorHandling, ARecordCarriesTheLastLocationNoted) {
    CZrHbErrorHandling::__ZrHb_WriteErrorText(eAppGroup_1, "none");
    {
        std::string file = "/src/getter/First.cpp";
        CZrHbErrorHandling::__ZrHb_SetParams(file.c_str(), 12);
        file.assign(file.size(), 'x'); // the name is copied
    }
    CZrHbErrorHandling::__ZrHb_WriteErrorText_Fmt(eAppGroup_2, "%s %d", "a", 1);
    CZrHbErrorHandling::__ZrHb_WriteErrorText(eAppGroup_3, "100%s %n %d");
    EXPECT_EQ(Log(), (Lines{Line("1", ":0", "none"), Line("2", "First.cpp:12", "a 1"),
                            Line("3", "First.cpp:12", "100%s %n %d")}));
}

TEST_F(ErrorHandling, TextsThatDoNotFitAreReplacedAsAWhole) {
    constexpr const char* kOverflow = "*** _LogMsg: Internal Error: Buffer not large enough!";
    const std::string longest(10'239, 'a');
    EXPECT_EQ(CZrHbErrorHandling::CSFmt("%s", longest.c_str()), longest.c_str());
    EXPECT_EQ(CZrHbErrorHandling::CSFmt("%sb", longest.c_str()), kOverflow);
    CZrHbErrorHandling::__ZrHb_SetParams("x.cpp", 1);
    CZrHbErrorHandling::__ZrHb_WriteErrorText(eAppGroup_1, (longest + "b").c_str());
    CZrHbErrorHandling::__ZrHb_WriteErrorText(eAppGroup_1, longest.c_str());
    EXPECT_EQ(Log(), (Lines{Line("1", "x.cpp:1", kOverflow), Line("1", "x.cpp:1", longest)}));
}

TEST_F(ErrorHandling, LoadsTheLibrarysTextsInTheAnsiCodePage) {
    EXPECT_EQ(CZrHbErrorHandling::LoadStringAndGet(3), "M\xF6glicher Grund:\n");
    EXPECT_EQ(CZrHbErrorHandling::LoadStringAndGet(9999),
              "Internal Error: LoadString(9999) failed.");
}

TEST_F(ErrorHandling, ServesSeveralThreads) {
    const std::string text(3000, 't');
    std::vector<std::jthread> threads(4);
    for (std::jthread& thread : threads)
        thread = std::jthread([&] {
            for (int i = 0; i < 50; ++i) {
                CZrHbErrorHandling::__ZrHb_SetParams("thread.cpp", 7);
                CZrHbErrorHandling::__ZrHb_WriteErrorText(eAppGroup_1, text.c_str());
                EXPECT_EQ(CZrHbErrorHandling::LoadStringAndGet(108), "Ihr Finanzinstitut online");
            }
        });
    threads.clear();
    EXPECT_EQ(Log(), Lines(200, Line("1", "thread.cpp:7", text)));
}

// Holds from load time on, without a call into the library.
TEST_F(ErrorHandling, TheLibraryLogsWhatThePlatformReports) {
    const unsigned line = __LINE__;
    platform::ReportDiagnostic(platform::Severity::failure, "moved aside");
    platform::ReportDiagnostic(platform::Severity::trace, "noted");
    const auto place = [](unsigned at) { return "ErrorHandlingTest.cpp:" + std::to_string(at); };
    EXPECT_EQ(Log(), (Lines{"group 2\terror\t" + place(line + 1) + "\tmoved aside",
                            "group 2\ttrace\t" + place(line + 2) + "\tnoted"}));
}

} // namespace
