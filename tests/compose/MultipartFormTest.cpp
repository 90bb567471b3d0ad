#include <ZrHbMultipartForm.h>

#include <random>
#include <string>
#include <thread>

#include <gtest/gtest.h>
#include <sys/stat.h>

#include "support/TemporaryHome.h"

namespace {

using Form = CZrHbMultipartForm;
using test_support::TemporaryHome;

const CString kType = "Content-Type: image/%s";
const CString kHead1 = "--xxx_mp_boundary_xxx\nContent-Disposition: ";
const CString kHead = "--xxx_mp_boundary_xxx\r\nContent-Disposition: form-data; name=\"";

CString Part(const char* pszFile, const char* pszType, const char* pszContent) {
    return kHead + "n\"; filename=\"" + pszFile + "\"\r\n" + pszType + "\r\n\r\n" + pszContent +
           "\r\n";
}

TEST(MultipartForm, LaysOutItsPieces) {
    EXPECT_EQ(Form::MultipartFormData("a", "1"), kHead1 + "form-data; name=a\n1\n");
    EXPECT_EQ(Form::MultipartAttachment("f\"%s", "x\r\n%d"),
              kHead1 + "attachment; filename=\"f\"%s\"\nx\r\n%d\n");
    EXPECT_EQ(Form::MultipartEnd(), "--xxx_mp_boundary_xxx--\n");
    EXPECT_EQ(Form::MultipartFormData2("a\r\n", "%d\n"), kHead + "a\r\n\"\r\n\r\n%d\n\r\n");
    EXPECT_EQ(Form::MultipartAttachment2("f", "x\ny\r\nz\r", "n"),
              Part("f", "Content-Type: text/plain", "x\r\ny\r\nz\r"));
    EXPECT_EQ(Form::MultipartEnd2(), "--xxx_mp_boundary_xxx--\r\n");
    EXPECT_EQ(Form::MultipartAttachFileFromMemory3("f", "\n", "n", kType),
              Part("f", kType, "\r\n"));
    const CString cut("n\0hidden", 8);
    EXPECT_EQ(Form::MultipartFormData(cut, cut), kHead1 + "form-data; name=n\nn\n");
    EXPECT_EQ(Form::MultipartAttachFileFromMemory3(cut, cut, cut, cut), Part("n", "n", "n"));
}

TEST(MultipartForm, LineEndsComeOutAsByReplacingThemTwice) {
    std::mt19937 random(3);
    for (int round = 0; round < 3000; ++round) {
        std::string content(random() % 12, ' ');
        for (char& ch : content)
            ch = "\r\nx"[random() % 3];
        CString replaced(content);
        replaced.Replace("\r\n", "\n");
        replaced.Replace("\n", "\r\n");
        ASSERT_EQ(Form::MultipartAttachFileFromMemory3("f", CString(content), "n", "t"),
                  Part("f", "t", replaced))
            << testing::PrintToString(content);
    }
}

TEST(MultipartForm, TakesTextFromFiles) {
    const TemporaryHome home;
    home.WriteFile("drive_c/f", "a\nb");
    home.WriteFile("drive_c/empty", "");
    const CString gone = "Cannot read file 'c:\\gone': The system cannot find the file specified.";
    const CString cases[][3] = {
        {"c:\\f", "a\nb", ""}, {"c:\\empty", "", ""}, {"c:\\gone", "", gone}};
    for (const auto& [path, content, reason] : cases) {
        CString strErrs[3];
        EXPECT_EQ(Form::MultipartAttachFromFile("f", path, strErrs[0]),
                  Form::MultipartAttachment("f", content));
        EXPECT_EQ(Form::MultipartAttachFromFile2("f", path, strErrs[1], "n"),
                  Form::MultipartAttachment2("f", content, "n"));
        const CString part = Form::MultipartAttachFileFromMemory3("f", content, "n", "t");
        EXPECT_EQ(Form::MultipartAttachFromFile3("f", path, "n", "t", strErrs[2]),
                  reason.IsEmpty() ? part : CString());
        for (const CString& strErr : strErrs)
            EXPECT_EQ(strErr, reason);
    }
}

TEST(MultipartForm, AppendsTheBytesOfFilesToBuffers) {
    const TemporaryHome home;
    std::string bytes(200'000, '\n');
    bytes[100'000] = '\0';
    home.WriteFile("f", bytes);
    CByteBuffer body(1024, 256);
    body.Add("before");
    CString strErr;
    const auto attach = [&](const CString& path) {
        return Form::MultipartAttachFromFile_AsByteBuffer("f", path, "n", "t", &body, strErr);
    };
    const std::string head = (kHead + "n\"; filename=\"f\"\r\nt\r\n\r\n").GetString();
    EXPECT_EQ(attach(home.Path("f").c_str()), 1);
    // A file without a size: what another thread writes.
    ASSERT_EQ(::mkfifo(home.Path("pipe").c_str(), 0600), 0);
    std::thread writer([&] { home.WriteFile("pipe", bytes); });
    EXPECT_EQ(attach(home.Path("pipe").c_str()), 1);
    writer.join();
    EXPECT_EQ(strErr, "");
    const std::string part = head + bytes + "\r\n";
    std::string expected = "before" + part + part;
    EXPECT_EQ(body.GetString(), CString(expected));

    // What fails leaves the part's head, also when it fails after it was opened.
    for (const CString& path : {CString(home.Path().c_str()), CString("/proc/self/mem")}) {
        EXPECT_EQ(attach(path), 0);
        EXPECT_GE(strErr.Find(path), 0);
        EXPECT_EQ(body.GetString(), CString(expected += head)) << path.GetString();
    }
}

} // namespace
