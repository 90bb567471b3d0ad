#include <platform/File.h>

#include <functional>

#include <gtest/gtest.h>
#include <platform/Exceptions.h>
#include <platform/LastError.h>
#include <sys/stat.h>

#include "support/TemporaryHome.h"

namespace {

using test_support::TemporaryHome;

constexpr UINT kNewFile = CFile::modeCreate | CFile::modeWrite;

// The number of the CFileException that the operation throws; ERROR_SUCCESS when it throws none.
DWORD ErrorThrownBy(const std::function<void()>& operation) {
    try {
        operation();
    } catch (CFileException* exception) {
        const DWORD error = exception->m_lOsError;
        exception->Delete();
        return error;
    }
    return ERROR_SUCCESS;
}

void WriteText(const std::string& path, UINT flags, const CString& text) {
    CStdioFile file;
    ASSERT_TRUE(file.Open(path.c_str(), flags)) << path;
    file.WriteString(text);
    file.Close();
}

unsigned ModeOf(const std::string& path) {
    struct stat status = {};
    return ::stat(path.c_str(), &status) == 0 ? status.st_mode & 07777 : 0;
}

TEST(File, OpenFlagsDecideWhatStays) {
    const TemporaryHome home;
    const std::string path = home.Path("a.txt");
    CFile file;
    EXPECT_FALSE(file.Open(path.c_str(), CFile::modeWrite));
    EXPECT_EQ(GetLastError(), ERROR_FILE_NOT_FOUND);

    WriteText(path, kNewFile, "12345");
    WriteText(path, CFile::modeWrite, "ab");
    EXPECT_EQ(home.ReadFile("a.txt"), "ab345");
    WriteText(path, kNewFile | CFile::modeNoTruncate, "x");
    EXPECT_EQ(home.ReadFile("a.txt"), "xb345");
    WriteText(path, kNewFile | CFile::modeNoTruncate | CFile::modeAppend, "6");
    EXPECT_EQ(home.ReadFile("a.txt"), "xb3456");
    WriteText(path, kNewFile, "new");
    EXPECT_EQ(home.ReadFile("a.txt"), "new");
}

TEST(File, DrivePathsStayBelowTheDrive) {
    const TemporaryHome home;
    home.WriteFile("drive_c/Data/in.bin", std::string("a\0b", 3));
    CFile file;
    ASSERT_TRUE(file.Open("C:\\Data\\in.bin", CFile::modeRead));
    EXPECT_EQ(file.GetLength(), 3U);
    char buffer[8] = {};
    EXPECT_EQ(file.Read(buffer, 2), 2U);
    EXPECT_EQ(file.Read(buffer, 8), 1U);
    EXPECT_EQ(buffer[0], 'b');
    EXPECT_EQ(file.Read(buffer, 8), 0U);
    EXPECT_FALSE(file.Open("C:\\Data\\in.bin", CFile::modeRead)) << "it is open already";
    file.Close();
    CFile::Rename("c:\\Data\\in.bin", "c:\\out.bin");
    EXPECT_EQ(home.ReadFile("drive_c/out.bin"), std::string("a\0b", 3));
    CFile::Remove("c:\\out.bin");
    EXPECT_EQ(home.ReadFile("drive_c/out.bin"), std::nullopt);
    EXPECT_FALSE(file.Open("c:\\..\\secret", kNewFile));
    EXPECT_EQ(GetLastError(), ERROR_ACCESS_DENIED);
}

TEST(File, PrivateFilesBelongToTheUserWhateverTheUmask) {
    const TemporaryHome home;
    const mode_t before = ::umask(0);
    WriteText(home.Path("lax"), kNewFile | CFile::modePrivate, "x");
    ::umask(0777);
    WriteText(home.Path("strict"), kNewFile | CFile::modePrivate, "x");
    ::umask(022);
    WriteText(home.Path("shared"), kNewFile, "x");
    WriteText(home.Path("shared"), kNewFile | CFile::modePrivate, "x");
    ::umask(before);
    EXPECT_EQ(ModeOf(home.Path("lax")), 0600U);
    EXPECT_EQ(ModeOf(home.Path("strict")), 0600U);
    EXPECT_EQ(ModeOf(home.Path("shared")), 0644U) << "an existing file keeps its mode";
}

TEST(File, TextModePutsACarriageReturnBeforeEveryLineFeed) {
    const TemporaryHome home;
    const CString text("a\n\r\n\0\n", 6);
    WriteText(home.Path("text"), kNewFile | CFile::typeText, text);
    WriteText(home.Path("bytes"), kNewFile, text);
    EXPECT_EQ(home.ReadFile("text"), std::string("a\r\n\r\r\n\0\r\n", 9));
    EXPECT_EQ(home.ReadFile("bytes"), std::string(text.View()));
}

TEST(File, FailuresAreThrownWithTheirNumber) {
    const TemporaryHome home;
    CStdioFile full;
    ASSERT_TRUE(full.Open("/dev/full", CFile::modeWrite));
    EXPECT_EQ(ErrorThrownBy([&] { full.WriteString("x"); }), ERROR_DISK_FULL);
    EXPECT_EQ(GetLastError(), ERROR_DISK_FULL);

    CFile closed;
    EXPECT_EQ(ErrorThrownBy([&] { closed.Write("x", 1); }), ERROR_INVALID_HANDLE);
    EXPECT_EQ(ErrorThrownBy([&] { closed.Close(); }), ERROR_SUCCESS);

    home.WriteFile("file", "x");
    CFile readOnly;
    ASSERT_TRUE(readOnly.Open(home.Path("file").c_str(), CFile::modeRead));
    EXPECT_EQ(ErrorThrownBy([&] { readOnly.Write("x", 1); }), ERROR_INVALID_HANDLE);
    const std::string missing = home.Path("missing");
    EXPECT_EQ(ErrorThrownBy([&] { CFile::Remove(missing.c_str()); }), ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(ErrorThrownBy([&] { CFile::Remove("c:\\..\\x"); }), ERROR_ACCESS_DENIED);
    EXPECT_EQ(ErrorThrownBy([&] { CFile::Rename(missing.c_str(), "c:\\x"); }),
              ERROR_FILE_NOT_FOUND);
}

TEST(File, DirectoriesAreNoFiles) {
    const TemporaryHome home;
    home.WriteFile("directory/file", "x");
    CFile file;
    EXPECT_FALSE(file.Open(home.Path("directory").c_str(), CFile::modeRead));
    EXPECT_EQ(GetLastError(), ERROR_ACCESS_DENIED);
    EXPECT_FALSE(CFile::Exists(home.Path("directory").c_str()));
    EXPECT_TRUE(CFile::Exists(home.Path("directory/file").c_str()));
    EXPECT_FALSE(CFile::Exists(home.Path("nothing").c_str()));
}

} // namespace
