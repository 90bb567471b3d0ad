// What the composers make arrives, through the getter, as the fields and files that went in.
#include <map>

#include <gtest/gtest.h>

#include <ZrHbDataTransmit.h>
#include <ZrHbHttpString.h>
#include <ZrHbMultipartForm.h>
#include <platform/Clock.h>

#include "httpbin/HttpBinPosts.h"
#include "support/ManualClock.h"

using namespace test_support;

namespace {

constexpr auto kPublic = CZrHbDataTransmit::eDataConfidentialityType_Public;
constexpr auto kConfidential = CZrHbDataTransmit::eDataConfidentialityType_Confidential;
constexpr const char* kFormPieces =
    "Content-Type: multipart/form-data; boundary=xxx_mp_boundary_xxx";
constexpr std::size_t kMegabyte = 1'000'000;

// The values that encodings get wrong, by the names of their fields.
std::map<std::string, std::string> DifficultValues() {
    std::string allBytes;
    for (int byte = 1; byte < 256; ++byte)
        allBytes += static_cast<char>(byte);
    return {
        {"umlauts", "Gr\xFC\xDF"
                    "e aus K\xF6ln, 5 \x80"},
        {"percent", "100% %41 %zz %s %"},
        {"separators", "a=1&b=2;c?#+ +&amp;"},
        {"quotes", "\"K\xF6nig\" 'M\xFCller' \\"},
        {"lines", "one\r\ntwo\r\n\r\n--three--\r\n"},
        {"empty", ""},
        {"bytes", allBytes},
    };
}

CString Text(const std::string& bytes) {
    return CString(std::string_view(bytes));
}

// As a map, so that a difference is shown whole.
std::map<std::string, std::string> Fields(const nlohmann::json& fields) {
    std::map<std::string, std::string> found;
    for (const auto& [name, value] : fields.items())
        found[name] = Bytes(value);
    return found;
}

CZrHbDataTransmit DifficultForm() {
    CZrHbDataTransmit form;
    for (const auto& [name, value] : DifficultValues())
        form.SetField(Text(name), Text(value), kConfidential);
    return form;
}

std::string Binary(std::size_t size) {
    std::string content(size, '\0');
    std::uint32_t state = 1;
    for (std::size_t index = 0; index < size; index += 2) { // every other byte stays NUL
        state = state * 1'664'525 + 1'013'904'223;
        content[index] = static_cast<char>(state >> 24);
    }
    return content;
}

class ComposedRequests : public HttpBinPosts {
protected:
    // Two files in a byte buffer, with a field between them.
    void ExpectFilesToArrive(const std::string& large) {
        const std::string small("\0\r\n--\xFF\0", 7);
        CByteBuffer body(1024, 256);
        CString error;
        ASSERT_EQ(CZrHbMultipartForm::MultipartAttachFromFile_AsByteBuffer(
                      "large.bin", FileWith("large", large), "large",
                      "Content-Type: application/octet-stream", &body, error),
                  1);
        body.Add(CZrHbMultipartForm::MultipartFormData2("field", "50 % f\xFCr \"Z\xFCrich\""));
        ASSERT_EQ(CZrHbMultipartForm::MultipartAttachFromFile_AsByteBuffer(
                      "small.png", FileWith("small", small), "small", "Content-Type: image/png",
                      &body, error),
                  1);
        body.Add(CZrHbMultipartForm::MultipartEnd2());
        EXPECT_STREQ(error, "");
        const std::string_view bytes(reinterpret_cast<const char*>(body.GetData()), body.GetSize());
        const auto reply = Post(bytes, kFormPieces);
        EXPECT_EQ(Bytes(reply["form"]["field"]), "50 % f\xFCr \"Z\xFCrich\"");
        const UploadedFile received = FileOf(reply["files"]["large"]);
        EXPECT_EQ(received.type, "application/octet-stream");
        EXPECT_TRUE(received.content == large) << received.content.size() << " bytes";
        EXPECT_EQ(FileOf(reply["files"]["small"]).type, "image/png");
        EXPECT_EQ(FileOf(reply["files"]["small"]).content, small);
    }
};

using LargeRequests = ComposedRequests;

const auto kEngineName = [](const auto& instance) { return std::string(instance.param); };

INSTANTIATE_TEST_SUITE_P(Engines, ComposedRequests, testing::Values("builtin", "chromium"),
                         kEngineName);
INSTANTIATE_TEST_SUITE_P(Engines, LargeRequests, testing::Values("builtin"), kEngineName);

} // namespace

TEST_P(ComposedRequests, FormDataSetsArriveInBothEncodings) {
    CZrHbDataTransmit form = DifficultForm();
    const auto encoded = Post(form.GetURLEncodedData(0).View(), form.GetURLEncodedHeader());
    EXPECT_EQ(Fields(encoded["form"]), DifficultValues());
    EXPECT_EQ(encoded["data"], "");
    const auto masked =
        Post(form.GetURLEncodedData(CZrHbDataTransmit::eRequestDataType_Masked, 0).View(), nullptr);
    EXPECT_EQ(Bytes(masked["form"]["quotes"]), "[...]");
    const auto query = Get("/get" + std::string(form.GetURLEncodedData(1).View()));
    EXPECT_EQ(Fields(query["args"]), DifficultValues());

    const std::string file = "Kontoauszug f\xFCr Z\xFCrich\r\n\t\"100 %\" & mehr\n";
    ASSERT_EQ(form.SetFile("statement", FileWith("statement.txt", file),
                           CZrHbDataTransmit::eContentType_TextPlain, kPublic),
              1);
    ASSERT_EQ(form.SetFile("picture", FileWith("picture.png", "\x89PNG\r\n\x1A\n"),
                           CZrHbDataTransmit::eContentType_OctetStream, kPublic),
              1);
    CString body;
    {
        ManualClock clock; // a boundary takes a second of its time
        const platform::ScopedService<platform::Clock> installed(clock);
        body = form.GetMultipartData();
    }
    const auto parts = Post(body.View(), form.GetMultipartHeader());
    EXPECT_EQ(Fields(parts["form"]), DifficultValues());
    EXPECT_EQ(FileOf(parts["files"]["statement"]).content, file);
    EXPECT_EQ(FileOf(parts["files"]["statement"]).type, "text/plain");
    EXPECT_EQ(FileOf(parts["files"]["picture"]).content, "\x89PNG\r\n\x1A\n");
    EXPECT_EQ(FileOf(parts["files"]["picture"]).type, "application/octet-stream");
    EXPECT_EQ(parts["files"].size(), 2u);
}

TEST_P(ComposedRequests, QueryAndPostStringsArriveInTheirOrder) {
    CZrHbHttpString pairs;
    for (const auto& [name, value] : DifficultValues())
        pairs.AddField(Text(name), Text(value), 1);
    EXPECT_EQ(Fields(Post(pairs.GetPostString().View(), nullptr)["form"]), DifficultValues());
    EXPECT_EQ(Fields(Get("/get" + std::string(pairs.GetGetString().View()))["args"]),
              DifficultValues());
    pairs.Empty();
    pairs.AddField("a", "2+2", 1);
    pairs.AddField("a", "%2B+", 0);
    pairs.AddField("b", "", 1);
    pairs.AddField("a", "", 0);
    const auto repeated = Post(pairs.GetPostString().View(), nullptr)["form"];
    EXPECT_EQ(repeated, (nlohmann::json{{"a", {"2+2", "+ ", ""}}, {"b", ""}}));
}

TEST_P(ComposedRequests, PiecesOfMultipartFormsArrive) {
    using Form = CZrHbMultipartForm;
    const CString path = FileWith("umsatz.csv", "Z\xFCrich;1\nBern;2\r\n");
    const std::string read = "Z\xFCrich;1\r\nBern;2\r\n";
    CString error;
    CString body;
    for (const auto& [name, value] : DifficultValues())
        body += Form::MultipartFormData2(Text(name), Text(value));
    body += Form::MultipartAttachment2("a.txt", "\xE4\n\xF6\r\n\xFC\r", "second") +
            Form::MultipartAttachFromFile2("b.txt", path, error, "second file") +
            Form::MultipartAttachFileFromMemory3("c.csv", "\"100 %\"\n\xC4", "third",
                                                 "Content-Type: text/csv") +
            Form::MultipartAttachFromFile3("d.csv", path, "third file",
                                           "Content-Type: application/x-own", error) +
            Form::MultipartEnd2();
    EXPECT_STREQ(error, "");
    const auto reply = Post(body.View(), kFormPieces);
    EXPECT_EQ(Fields(reply["form"]), DifficultValues());
    const struct {
        const char* field;
        std::string type;
        std::string content;
    } files[] = {
        {"second", "text/plain", "\xE4\r\n\xF6\r\n\xFC\r"},
        {"second file", "text/plain", read},
        {"third", "text/csv", "\"100 %\"\r\n\xC4"},
        {"third file", "application/x-own", read},
    };
    for (const auto& file : files) {
        EXPECT_EQ(FileOf(reply["files"][file.field]).content, file.content) << file.field;
        EXPECT_EQ(FileOf(reply["files"][file.field]).type, file.type) << file.field;
    }
    EXPECT_EQ(reply["files"].size(), std::size(files));
}

TEST_P(ComposedRequests, FilesInAByteBufferArrive) {
    ExpectFilesToArrive(Binary(kMegabyte));
}

TEST_P(LargeRequests, OfFiftyMegabytesArrive) {
    ExpectFilesToArrive(Binary(50 * kMegabyte));
}
