#include <platform/IniFile.h>

#include <chrono>
#include <filesystem>
#include <map>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <platform/LastError.h>
#include <sys/file.h>
#include <unistd.h>

#include "support/DiagnosticRecorder.h"
#include "support/ManualClock.h"
#include "support/TemporaryHome.h"
#include "system/IniDocument.h"

namespace {

using namespace std::string_view_literals;

class IniFileTest : public ::testing::Test {
protected:
    std::string Get(const char* section, const char* key, const char* fallback = "-",
                    DWORD size = 4096) const {
        std::vector<char> buffer(size);
        const DWORD length =
            GetPrivateProfileStringA(section, key, fallback, buffer.data(), size, file.c_str());
        EXPECT_EQ(buffer[length], '\0');
        return {buffer.data(), length};
    }
    BOOL Set(const char* section, const char* key, const char* value) const {
        return WritePrivateProfileStringA(section, key, value, file.c_str());
    }
    void Fill(std::string_view text) const { home.WriteFile("a.ini", text); }
    std::string Content(const char* name = "a.ini") const {
        return home.ReadFile(name).value_or("<no file>");
    }
    auto FilesInHome() const {
        return std::distance(std::filesystem::directory_iterator(home.Path()), {});
    }

    test_support::TemporaryHome home;
    std::string file = home.Path("a.ini");
};

TEST_F(IniFileTest, FindsTheFirstMatchAndStripsBlanksAndOnePairOfQuotes) {
    Fill("stray=0\n  [ S ]  ; note\n \tdouble \t= \" a \" \nsingle='b'\nDOUBLE=2\nmixed='c\"\n"
         "twice=\"\"d\"\"\nlone=\"\nempty=\n;hidden=1\n  ; hidden = 2\nequals=a=b\nno entry\n"
         "semi=x;y\n[Two]\nkey=3\n[s]\nlate=5\n");
    const std::map<std::string, std::string> expected = {
        {"Double", " a "}, {"single", "b"},   {"mixed", "'c\""}, {"twice", "\"d\""},
        {"lone", "\""},    {"empty", ""},     {"hidden", "-"},   {"equals", "a=b"},
        {"semi", "x;y"},   {"no entry", "-"}, {"stray", "-"},    {"late", "-"}};
    for (const auto& [key, value] : expected)
        EXPECT_EQ(Get("S", key.c_str()), value) << key;
    EXPECT_EQ(Get("two", "key"), "3");
    EXPECT_EQ(Get("", "stray"), "-");

    const platform::IniSnapshot snapshot(file.c_str());
    Fill("[two]\nkey=changed\n");
    for (const auto& [key, value] : expected)
        EXPECT_EQ(Get("S", key.c_str()), value) << "from the snapshot: " << key;
    EXPECT_EQ(Get(" two", "KEY "), "3");
    EXPECT_EQ(Get("", "stray"), "-");
}

TEST_F(IniFileTest, ToleratesForeignLineEndsMarksAndBytes) {
    for (const std::string end : {"\n", "\r", "\r\n"}) {
        Fill("\xEF\xBB\xBF[S]" + end + "a=1" + end + end + "b=2");
        EXPECT_EQ(Get("S", "a") + Get("S", "b"), "12");
    }
    Fill("[S]\0x\na=1\0hidden\n\0b=2\nc=3\n[open\n]\n=\n"sv);
    EXPECT_EQ(Get("S", "a") + Get("S", "b") + Get("S", "c"), "1-3");
}

TEST_F(IniFileTest, ReadsTheLeadingNumber) {
    Fill("[N]\na=250ms\nb=-3\nc=x1\ne=99999999999\nh=-99999999999999999999\n");
    const std::map<std::string, UINT> expected = {{"a", 250},         {"b", static_cast<UINT>(-3)},
                                                  {"c", 0},           {"e", 0xFFFFFFFFu},
                                                  {"h", 0x80000000u}, {"absent", 1000}};
    for (const auto& [key, value] : expected)
        EXPECT_EQ(GetPrivateProfileIntA("N", key.c_str(), 1000, file.c_str()), value) << key;
}

TEST_F(IniFileTest, CutsWhatDoesNotFit) {
    Fill("[S]\na=12345\n[Third]\n");
    EXPECT_EQ(Get("S", "a", "", 6), "12345");
    EXPECT_EQ(Get("S", "a", "", 5), "1234");
    EXPECT_EQ(Get("S", "x", "default", 4), "def");
    char buffer[16] = "unchanged";
    EXPECT_EQ(GetPrivateProfileStringA("S", "a", "", buffer, 0, file.c_str()), 0u);
    EXPECT_STREQ(buffer, "unchanged");
    EXPECT_EQ(GetPrivateProfileSectionNamesA(buffer, 9, file.c_str()), 8u);
    EXPECT_EQ(std::string_view(buffer, 9), "S\0Third\0\0"sv);
    EXPECT_EQ(GetPrivateProfileSectionNamesA(buffer, 8, file.c_str()), 6u);
    EXPECT_EQ(std::string_view(buffer, 8), "S\0Thir\0\0"sv);
}

TEST_F(IniFileTest, WritingKeepsEverythingElse) {
    Fill("\xEF\xBB\xBF; head\r\n[A]\r\nx = 1\r\n; note\r\nX=2\r\n\r\n[B]\r\ny=3");
    const char* const kWrites[][3] = {{"a", "X", "new"},   {"A", "added", " v "},
                                      {"B", "z", "4"},     {"C", "k", ""},
                                      {"B", "Y", nullptr}, {"B", "no", nullptr}};
    for (const auto& [section, key, value] : kWrites)
        EXPECT_TRUE(Set(section, key, value)) << key;
    EXPECT_EQ(Content(), "\xEF\xBB\xBF; head\r\n[A]\r\nX=new\r\n; note\r\nX=2\r\nadded= v \r\n\r\n"
                         "[B]\r\nz=4\r\n[C]\r\nk=\r\n");
}

TEST_F(IniFileTest, ANewFileIsPrivateAndALinkStaysOne) {
    ASSERT_TRUE(Set("S", "k", "v"));
    EXPECT_EQ(Content(), "[S]\r\nk=v\r\n");
    EXPECT_EQ(static_cast<unsigned>(std::filesystem::status(file).permissions()), 0600u);
    const std::string link = home.Path("link.ini");
    std::filesystem::create_symlink("a.ini", link);
    ASSERT_TRUE(WritePrivateProfileStringA("S", "k", "w", link.c_str()));
    EXPECT_TRUE(std::filesystem::is_symlink(link));
    EXPECT_EQ(Get("S", "k"), "w");
    EXPECT_EQ(FilesInHome(), 2); // no temporary file stays
}

TEST_F(IniFileTest, ARefusedOrFailedWriteLeavesEverythingAsItWas) {
    Fill("[S]\nk=v\n");
    // Texts that would read back as something else.
    const char* const kBad[][3] = {{"S\n[T]", "k", "v"}, {"S", "k\nx", "v"}, {"S", "k", "v\r[T]"},
                                   {"S", "[T]", "v"},    {"S", ";k", "v"},   {"S", "a=b", "v"}};
    for (const auto& [section, key, value] : kBad) {
        SetLastError(0);
        EXPECT_FALSE(Set(section, key, value)) << section << key << value;
        EXPECT_EQ(GetLastError(), ERROR_INVALID_PARAMETER);
    }
    EXPECT_EQ(Content(), "[S]\nk=v\n");
    for (const auto& [path, error] : {std::pair{home.Path("no/a.ini"), ERROR_FILE_NOT_FOUND},
                                      {"c:\\..\\a.ini", ERROR_ACCESS_DENIED}}) {
        EXPECT_FALSE(WritePrivateProfileStringA("S", "k", "v", path.c_str()));
        EXPECT_EQ(GetLastError(), error);
    }
    EXPECT_EQ(FilesInHome(), 1);
}

TEST_F(IniFileTest, AnUpdateIsReadBackAtOnceAndWrittenAsAWholeOrNotAtAll) {
    Fill("[S]\nk=v\n");
    for (const bool isCommitted : {false, true}) {
        platform::IniUpdate update(file.c_str());
        EXPECT_TRUE(Set("S", "k", nullptr));
        EXPECT_TRUE(Set("T", "n", "1"));
        EXPECT_EQ(Get("S", "k") + Get("T", "n"), "-1");
        EXPECT_TRUE(!isCommitted || update.Commit());
        EXPECT_EQ(Content(), isCommitted ? "[S]\n[T]\nn=1\n" : "[S]\nk=v\n");
    }
}

TEST_F(IniFileTest, ALockThatIsHeldForEverIsReportedAfterASecondAndOneThatMovesOnIsNot) {
    Fill("[S]\nk=v\n");
    const test_support::DiagnosticRecorder recorder;
    const int other = open(home.Path().c_str(), O_RDONLY);
    ASSERT_EQ(flock(other, LOCK_EX), 0);
    test_support::ManualClock clock;
    {
        const platform::ScopedService<platform::Clock> installed(clock);
        for (int call = 0; call < 3; ++call) {
            EXPECT_FALSE(Set("S", "k", "w"));
            EXPECT_EQ(GetLastError(), ERROR_BUSY);
        }
    }
    EXPECT_LE(clock.TickCount(), 1000u);
    EXPECT_EQ(recorder.Failures().size(), 3u);
    EXPECT_EQ(Content() + Get("S", "k"), "[S]\nk=v\nv");
    // Its holder goes on changing another file of the directory for longer than that.
    file = home.Path("b.ini");
    std::jthread holder([&] {
        for (int change = 0; change < 6; ++change) {
            home.WriteFile("b.ini", "[S]\nn=" + std::to_string(change) + "\n");
            std::this_thread::sleep_for(std::chrono::milliseconds(200));
        }
        flock(other, LOCK_UN);
    });
    EXPECT_TRUE(Set("S", "k", "w"));
    holder.join();
    close(other);
    EXPECT_EQ(Content("b.ini"), "[S]\nn=5\nk=w\n");
    EXPECT_EQ(FilesInHome(), 2);
}

TEST_F(IniFileTest, AnUnreadableFileCountsAsMissingAndIsReportedButNeverReplaced) {
    const test_support::DiagnosticRecorder recorder;
    EXPECT_EQ(Get("S", "k"), "-");
    EXPECT_TRUE(recorder.Failures().empty()); // no file at all is nothing to report
    std::filesystem::create_directory(file);
    EXPECT_EQ(Get("S", "k"), "-");
    ASSERT_EQ(recorder.Failures().size(), 1u);
    EXPECT_NE(recorder.Failures()[0].find(file), std::string::npos);
    EXPECT_FALSE(Set("S", "k", "v"));

    constexpr std::uintmax_t kLargest = 16u * 1024 * 1024;
    std::filesystem::remove(file);
    Fill("[S]\nk=v\n");
    std::filesystem::resize_file(file, kLargest);
    EXPECT_EQ(Get("S", "k"), "v");
    std::filesystem::resize_file(file, kLargest + 1);
    EXPECT_EQ(Get("S", "k"), "-");
    EXPECT_FALSE(Set("S", "k", "v"));
    EXPECT_EQ(std::filesystem::file_size(file), kLargest + 1);

    std::filesystem::remove(file);
    ASSERT_EQ(mkfifo(file.c_str(), 0600), 0); // reading must not wait for a writer
    EXPECT_EQ(Get("S", "k"), "-");
}

// Whatever the file holds, what is set is found, and nothing else changes its value.
TEST(IniDocument, SetsInRandomTexts) {
    std::mt19937 random(20101105);
    const std::string pieces[] = {"[S]", "[t]", "a=1", "A = 2", "b=", "\n",    "\r\n", "\r",
                                  ";",   " ",   "[",   "]",     "=",  "\"x\"", "junk"};
    for (int round = 0; round < 3000; ++round) {
        std::string text;
        for (int i = 0; i < 12; ++i)
            text += pieces[random() % std::size(pieces)];
        const platform::IniDocument before(text);
        platform::IniDocument document(text);
        document.Set("s", "a", "set");
        EXPECT_EQ(document.Find("S", "A"), "set") << ::testing::PrintToString(text);
        EXPECT_EQ(document.Find("S", "b"), before.Find("S", "b")) << ::testing::PrintToString(text);
        EXPECT_EQ(document.Find("T", "a"), before.Find("T", "a")) << ::testing::PrintToString(text);
        document.Remove("s", "a");
        EXPECT_NE(document.Find("s", "a").value_or(""), "set");
    }
}

} // namespace
