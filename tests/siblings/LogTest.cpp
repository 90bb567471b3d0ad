// The log and what it must not show.
#include "siblings/ZrAbErrorFile.h"

#include <algorithm>
#include <filesystem>
#include <string>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <platform/LastError.h>
#include <sys/stat.h>
#include <unistd.h>

#include "siblings/LogLine.h"
#include "support/ManualClock.h"
#include "support/TemporaryHome.h"

namespace {

constexpr const char* kLog = "log/zrhttpbase3.log";
constexpr std::size_t kLimit = 1024 * 1024;

class ErrorFileTest : public ::testing::Test {
protected:
    static int Log(const CString& text, const char* source = "/a/b/Some.cpp") {
        return CZrAbErrorFile::Log(text, eAppGroup_3, source, 42, "", "",
                                   CZrAbErrorFile::eErrorLevel_Trace,
                                   CZrAbErrorFile::eFunctionType_Http);
    }
    std::string Content(const char* name = kLog) const { return home.ReadFile(name).value_or(""); }

    test_support::TemporaryHome home;
    test_support::ManualClock clock{1'288'967'213}; // 2010-11-05 14:26:53 UTC
    platform::ScopedService<platform::Clock> installed{clock};
};

TEST_F(ErrorFileTest, WritesOneLineARecordForTheUserAlone) {
    constexpr auto kHttp = CZrAbErrorFile::eFunctionType_Http;
    EXPECT_EQ(Log("first"), 1);
    EXPECT_EQ(CZrAbErrorFile::LogError("2", eAppGroup_1, "c:\\x\\Other.cpp", 1, "", kHttp), 1);
    EXPECT_EQ(CZrAbErrorFile::LogFlow("gr\xFC\xDF", eAppGroup_2, nullptr, 0, "", kHttp), 1);
    CZrAbErrorFile file(eAppGroup_2);
    EXPECT_EQ(file.WriteErrorText("app", "http://u:p@h/?pin=1", "F.cpp", 9, ""), 1);
    EXPECT_EQ(Content(),
              "2010-11-05T14:26:53Z\tgroup 3\ttrace\tSome.cpp:42\tfirst\n"
              "2010-11-05T14:26:53Z\tgroup 1\terror\tOther.cpp:1\t2\n"
              "2010-11-05T14:26:53Z\tgroup 2\ttrace\t:0\tgrüß\n"
              "2010-11-05T14:26:53Z\tgroup 2\terror\tF.cpp:9\tapp: http://***@h/?pin=***\n");
    const auto modeOf = [&](const char* name) {
        return static_cast<unsigned>(std::filesystem::status(home.Path(name)).permissions());
    };
    EXPECT_EQ(modeOf(kLog), 0600u);
    EXPECT_EQ(modeOf("log"), 0700u);
}

TEST_F(ErrorFileTest, NoTextBringsInARecordOfItsOwn) {
    std::string every;
    for (int byte = 0; byte < 256; ++byte)
        every += static_cast<char>(byte);
    Log(CString(every), "a\n\tb.cpp");
    const std::string content = Content();
    EXPECT_EQ(std::ranges::count(content, '\t'), 4);
    EXPECT_NE(content.find("a\\n\\tb.cpp:42\t"), std::string::npos);
    const auto isControl = [](char ch) { return static_cast<unsigned char>(ch) < 0x20; };
    EXPECT_EQ(std::ranges::count_if(content, isControl), 5) << "the tabs and one line feed";
    EXPECT_EQ(EscapeControls("a\r\n\t\x1b[0m\x7f\x81\\"), "a\\r\\n\\t\\x1B[0m\\x7F\\x81\\");
    EXPECT_EQ(content.find("\xC2\x81"), std::string::npos); // a control character in UTF-8
}

TEST_F(ErrorFileTest, BeginsANewFileAtOneMebibyte) {
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
    std::filesystem::rename(home.Path(kLog), home.Path("log/zrhttpbase3.log.1"));
    home.WriteFile(kLog, std::string(kLimit, '.')); // cannot be put aside
    EXPECT_EQ(Log("x"), 1);

    const std::string log = home.Path(kLog);
    std::filesystem::remove(log);
    ASSERT_EQ(mkfifo(log.c_str(), 0600), 0);
    EXPECT_EQ(Log("x"), 0) << "a pipe that nobody reads";
    const int reader = open(log.c_str(), O_RDONLY | O_NONBLOCK);
    EXPECT_EQ(Log(CString(std::string(kLimit, 'x'))), 0) << "a pipe whose reader has stopped";
    close(reader);
    std::filesystem::remove(log);
    std::filesystem::create_symlink("/dev/full", log);
    EXPECT_EQ(Log("x"), 0);
    EXPECT_TRUE(std::filesystem::is_symlink(log));
}

} // namespace
