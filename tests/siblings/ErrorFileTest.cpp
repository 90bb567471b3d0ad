#include "siblings/ZrAbErrorFile.h"

#include <algorithm>
#include <filesystem>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <platform/LastError.h>

#include "siblings/LogLine.h"
#include "support/ManualClock.h"
#include "support/TemporaryHome.h"

namespace {

using test_support::ManualClock;
using test_support::TemporaryHome;

constexpr const char* kLog = "log/zrhttpbase3.log";

class ErrorFileTest : public ::testing::Test {
protected:
    static int Log(const CString& text, const char* source = "/a/b/Some.cpp") {
        return CZrAbErrorFile::Log(text, eAppGroup_3, source, 42, "", "",
                                   CZrAbErrorFile::eErrorLevel_Trace,
                                   CZrAbErrorFile::eFunctionType_Http);
    }
    std::string Content(const char* name = kLog) const { return home.ReadFile(name).value_or(""); }

    TemporaryHome home;
    ManualClock clock{1'288'967'213}; // 2010-11-05 14:26:53 UTC
    platform::ScopedService<platform::Clock> installed{clock};
};

TEST_F(ErrorFileTest, WritesOneLineARecord) {
    EXPECT_EQ(Log("first"), 1);
    EXPECT_EQ(CZrAbErrorFile::LogError("second", eAppGroup_1, "c:\\x\\Other.cpp", 1, "",
                                       CZrAbErrorFile::eFunctionType_Http),
              1);
    EXPECT_EQ(CZrAbErrorFile::LogFlow("gr\xFC\xDF", eAppGroup_2, nullptr, 0, "",
                                      CZrAbErrorFile::eFunctionType_Http),
              1);
    EXPECT_EQ(
        CZrAbErrorFile(eAppGroup_2).WriteErrorText("app", "http://u:p@h/?pin=1", "F.cpp", 9, ""),
        1);
    EXPECT_EQ(Content(),
              "2010-11-05T14:26:53Z\tgroup 3\ttrace\tSome.cpp:42\tfirst\n"
              "2010-11-05T14:26:53Z\tgroup 1\terror\tOther.cpp:1\tsecond\n"
              "2010-11-05T14:26:53Z\tgroup 2\ttrace\t:0\tgrüß\n"
              "2010-11-05T14:26:53Z\tgroup 2\terror\tF.cpp:9\tapp: http://***@h/?pin=***\n");
}

TEST_F(ErrorFileTest, NoTextBringsInARecordOfItsOwn) {
    std::string every;
    for (int byte = 0; byte < 256; ++byte)
        every += static_cast<char>(byte);
    Log(CString(every), "a\n\tb.cpp");
    const std::string content = Content();
    EXPECT_EQ(std::ranges::count(content, '\n'), 1);
    EXPECT_EQ(std::ranges::count(content, '\t'), 4);
    EXPECT_NE(content.find("a\\n\\tb.cpp:42\t"), std::string::npos);
    const auto isControl = [](char ch) { return static_cast<unsigned char>(ch) < 0x20; };
    EXPECT_EQ(std::ranges::count_if(content, isControl), 5);
    EXPECT_EQ(EscapeControls("a\r\n\t\x1b[0m\x7f\x81\\"), "a\\r\\n\\t\\x1B[0m\\x7F\\x81\\");
    EXPECT_EQ(content.find("\xC2\x81"), std::string::npos); // a control character in UTF-8
}

TEST_F(ErrorFileTest, IsTheUsersAlone) {
    Log("x");
    struct stat status = {};
    ASSERT_EQ(stat(home.Path(kLog).c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777u, 0600u);
    ASSERT_EQ(stat(home.Path("log").c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777u, 0700u);
}

TEST_F(ErrorFileTest, BeginsANewFileAtOneMebibyte) {
    constexpr std::size_t kLimit = 1024 * 1024;
    Log("");
    const std::size_t empty = Content().size();
    home.WriteFile("log/zrhttpbase3.log.1", "older");
    home.WriteFile(kLog, std::string(kLimit - empty, '.'));
    Log(""); // fits to the byte
    EXPECT_EQ(Content().size(), kLimit);
    EXPECT_EQ(Content("log/zrhttpbase3.log.1"), "older");
    Log("next");
    EXPECT_EQ(Content().size(), empty + 4);
    EXPECT_EQ(Content("log/zrhttpbase3.log.1").size(), kLimit);
    Log(CString(std::string(3 * kLimit, 'x')));
    EXPECT_LT(Content().size(), 128u * 1024); // no single text fills the log
}

TEST_F(ErrorFileTest, OneThatCannotBeWrittenChangesNothing) {
    home.WriteFile("log", "in the way");
    SetLastError(1234);
    EXPECT_EQ(Log("x"), 0);
    EXPECT_EQ(GetLastError(), 1234u);
    std::filesystem::remove(home.Path("log"));
    std::filesystem::create_directories(home.Path(kLog)); // a directory under the file's name
    EXPECT_EQ(Log("x"), 0);
    std::filesystem::remove(home.Path(kLog));
    std::filesystem::create_directory(home.Path("log/zrhttpbase3.log.1"));
    home.WriteFile(kLog, std::string(1024 * 1024, '.')); // cannot be put aside
    EXPECT_EQ(Log("x"), 1);
}

TEST_F(ErrorFileTest, KeepsTheRecordsOfSeveralThreadsApart) {
    const std::string text(3000, 't');
    std::vector<std::thread> threads;
    for (int number = 0; number < 4; ++number)
        threads.emplace_back([&] {
            for (int i = 0; i < 50; ++i)
                Log(text.c_str());
        });
    for (std::thread& thread : threads)
        thread.join();
    const std::string content = Content();
    EXPECT_EQ(std::ranges::count(content, '\n'), 200);
    const std::size_t line = content.find('\n') + 1;
    EXPECT_EQ(content.size(), 200 * line);
}

} // namespace
