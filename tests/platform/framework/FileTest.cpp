#include <platform/File.h>

#include <filesystem>

#include <gtest/gtest.h>
#include <platform/LastError.h>
#include <sys/stat.h>

#include "support/TemporaryHome.h"
#include "support/ThrownBy.h"

namespace {

constexpr UINT kNewFile = CFile::modeCreate | CFile::modeWrite;

class FileTest : public testing::Test {
protected:
    void Write(const char* name, UINT flags, const CString& text) const {
        CStdioFile written;
        ASSERT_TRUE(written.Open(home.Path(name).c_str(), flags)) << name;
        written.WriteString(text);
    }

    test_support::TemporaryHome home;
    CFile file;
};

TEST_F(FileTest, FlagsDecideWhatStaysAndHowLinesEnd) {
    const struct {
        UINT flags;
        CString text;
        std::string content;
    } kWrites[] = {
        {kNewFile, "12345", "12345"},
        {CFile::modeWrite, "ab", "ab345"},
        {kNewFile | CFile::modeNoTruncate, "x", "xb345"},
        {kNewFile | CFile::modeNoTruncate | CFile::modeAppend, "6", "xb3456"},
        {kNewFile, "n\n", "n\n"},
        {kNewFile | CFile::typeText, {"a\n\r\n\0\n", 6}, {"a\r\n\r\r\n\0\r\n", 9}},
    };
    for (const auto& [flags, text, content] : kWrites) {
        Write("a.txt", flags, text);
        EXPECT_EQ(home.ReadFile("a.txt"), content);
    }
}

TEST_F(FileTest, DrivePathsStayBelowTheDrive) {
    home.WriteFile("drive_c/Data/in.bin", std::string("a\0b", 3));
    ASSERT_TRUE(file.Open("C:\\Data\\in.bin", CFile::modeRead));
    EXPECT_EQ(file.GetLength(), 3U);
    EXPECT_FALSE(file.Open("C:\\Data\\in.bin", CFile::modeRead)) << "it is open already";
    file.Close();
    CFile::Rename("c:\\Data\\in.bin", "c:\\out.bin");
    EXPECT_EQ(home.ReadFile("drive_c/out.bin"), std::string("a\0b", 3));
    EXPECT_FALSE(file.Open("c:\\..\\secret", kNewFile));
    EXPECT_EQ(GetLastError(), ERROR_ACCESS_DENIED);
}

TEST_F(FileTest, PrivateFilesBelongToTheUserWhateverTheUmask) {
    home.WriteFile("existing", "x");
    ASSERT_EQ(::chmod(home.Path("existing").c_str(), 0644), 0);
    const mode_t before = ::umask(0);
    Write("lax", kNewFile | CFile::modePrivate, "x");
    ::umask(0777);
    Write("strict", kNewFile | CFile::modePrivate, "x");
    Write("existing", kNewFile | CFile::modePrivate, "x");
    ::umask(before);
    for (const auto& [name, mode] :
         {std::pair{"lax", 0600U}, {"strict", 0600U}, {"existing", 0644U}}) {
        const auto permissions = std::filesystem::status(home.Path(name)).permissions();
        EXPECT_EQ(static_cast<unsigned>(permissions), mode) << name;
    }
}

TEST_F(FileTest, FailuresAreToldWithTheirNumber) {
    const auto expectError = [](DWORD error, const auto& operation) {
        EXPECT_EQ(test_support::ThrownBy(operation), "file error " + std::to_string(error));
    };
    CStdioFile full;
    ASSERT_TRUE(full.Open("/dev/full", CFile::modeWrite));
    expectError(ERROR_DISK_FULL, [&] { full.WriteString("x"); });
    expectError(ERROR_INVALID_HANDLE, [&] { file.Write("x", 1); }); // not open
    const std::string missing = home.Path("missing");
    expectError(ERROR_FILE_NOT_FOUND, [&] { CFile::Remove(missing.c_str()); });
    expectError(ERROR_ACCESS_DENIED, [] { CFile::Remove("c:\\..\\x"); });

    EXPECT_FALSE(file.Open(missing.c_str(), CFile::modeWrite));
    EXPECT_EQ(GetLastError(), ERROR_FILE_NOT_FOUND);
    EXPECT_FALSE(file.Open(home.Path().c_str(), CFile::modeRead)) << "a directory";
    EXPECT_EQ(GetLastError(), ERROR_ACCESS_DENIED);
}

} // namespace
