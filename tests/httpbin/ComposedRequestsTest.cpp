// What the composers make arrives, through the getter, as the fields and files that went in.
#include <map>
#include <memory>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <openssl/evp.h>

#include <ZrHbDataTransmit.h>
#include <ZrHbHttpString.h>
#include <ZrHbMultipartForm.h>
#include <ZrHbUHttpGet.h>
#include <platform/Clock.h>

#include "support/HttpBin.h"
#include "support/ManualClock.h"
#include "support/TemporaryHome.h"

using namespace test_support;
using nlohmann::json;

namespace {

constexpr DWORD kReadTimeoutMs = 60'000;
constexpr auto kPublic = CZrHbDataTransmit::eDataConfidentialityType_Public;
constexpr const char* kFormPieces =
    "Content-Type: multipart/form-data; boundary=xxx_mp_boundary_xxx";
constexpr std::size_t kMegabyte = 1'000'000;

using Fields = std::map<std::string, std::string>;

// The values that encodings get wrong, by the names of their fields.
Fields DifficultValues() {
    std::string allBytes;
    for (int byte = 1; byte < 256; ++byte)
        allBytes += static_cast<char>(byte);
    return {
        {"percent", "100% %41 %zz %s %"},
        {"separators", "a=1&b=2;c?#+ +&amp;"},
        {"quotes", "\"K\xF6nig\" 'M\xFCller' \\"},
        {"lines", "one\r\ntwo\r\n\r\n--three--\r\n"},
        {"empty", ""},
        {"bytes", allBytes},
    };
}

// A text as bytes; httpbin answers with the code points of their values.
std::string BytesOf(const json& text) {
    if (!text.is_string()) return "(no text: " + text.dump().substr(0, 1000) + ")";
    const std::string_view utf8 = text.get_ref<const std::string&>();
    std::string bytes;
    for (std::size_t i = 0; i < utf8.size(); ++i) {
        int unit = static_cast<unsigned char>(utf8[i]);
        EXPECT_LT(unit, 0xC4) << "a code point that is no byte";
        if (unit >= 0xC0) unit = (unit & 0x03) << 6 | (utf8[++i] & 0x3F);
        bytes += static_cast<char>(unit);
    }
    return bytes;
}

Fields FieldsOf(const json& fields) {
    Fields found;
    for (const auto& [name, value] : fields.items())
        found[name] = BytesOf(value);
    return found;
}

std::string FromBase64(std::string_view encoded) {
    std::string decoded(encoded.size() / 4 * 3, '\0');
    const int size = EVP_DecodeBlock(reinterpret_cast<unsigned char*>(decoded.data()),
                                     reinterpret_cast<const unsigned char*>(encoded.data()),
                                     static_cast<int>(encoded.size()));
    EXPECT_EQ(size, static_cast<int>(decoded.size())) << "not base64";
    const std::size_t last = encoded.find_last_not_of('='); // the padding decodes to NUL bytes
    decoded.resize(decoded.size() - (encoded.size() - 1 - last));
    return decoded;
}

// The type line and the bytes of a file; "text" for one that httpbin took for UTF-8, where it does
// not tell the type.
std::pair<std::string, std::string> FileOf(const json& file) {
    constexpr std::string_view kEncoding = ";base64,";
    const std::string text = file.is_string() ? file.get<std::string>() : file.dump();
    const std::size_t encoding = text.find(kEncoding);
    if (!text.starts_with("data:") || encoding > 200) return {"text", text};
    return {text.substr(5, encoding - 5),
            FromBase64(std::string_view(text).substr(encoding + kEncoding.size()))};
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

// A getter, and httpbin for it to post to. The parameter is the engine: "builtin" (in-process
// back-end) or "chromium" (out of process).
class ComposedRequests : public testing::TestWithParam<const char*> {
protected:
    static void SetUpTestSuite() { s_server = std::make_unique<HttpBin>(); }
    static void TearDownTestSuite() { s_server.reset(); }
    void SetUp() override {
        m_getter.SetSecurityTimeout(0);
        ASSERT_EQ(m_getter.ConnectV2(nullptr, m_error, CZrHbUHttpGet::eVisible,
                                     CZrHbUHttpGet::eConnectWith_InternetExplorer, 0, ""),
                  ZRHB_OK)
            << m_error.GetString();
    }
    static bool IsBuiltin() { return std::string_view(GetParam()) == "builtin"; }

    // What httpbin understood of a request. pszHeaders: as the getter takes them.
    json Get(const std::string& pathAndQuery) {
        EXPECT_EQ(m_getter.Open(CString(s_server->Url(pathAndQuery)), m_error, FALSE), ZRHB_OK);
        return Read();
    }
    json Post(std::string_view body, const char* pszHeaders) {
        EXPECT_EQ(m_getter.Open(CString(s_server->Url("/post")), m_error,
                                const_cast<char*>(body.data()), static_cast<DWORD>(body.size()),
                                pszHeaders, FALSE),
                  ZRHB_OK);
        return Read();
    }
    // The path of a new file with this content.
    CString FileWith(std::string_view name, std::string_view content) {
        m_home.WriteFile(name, content);
        return CString(m_home.Path(name));
    }

private:
    json Read() {
        CByteBuffer page(4096, 4096);
        CString url;
        EXPECT_EQ(m_getter.BusyRead(page, m_error, url, kReadTimeoutMs, FALSE, 0, nullptr, nullptr),
                  ZRHB_OK)
            << m_error.GetString();
        return json::parse(page.GetData(), page.GetData() + page.GetSize());
    }

    static inline std::unique_ptr<HttpBin> s_server;
    const TemporaryHome m_home;
    const ScopedVariable m_application{"ZRHTTP_APPLICATION", GetParam()};
    const ScopedVariable m_headless{"ZRHTTP_HEADLESS", "1"};
    // Where the getter opens pages out of process.
    const ScopedVariable m_system{"ZRHTTP_LEGACY_SYSTEM", IsBuiltin() ? nullptr : "1"};
    CZrHbUHttpGet m_getter{eAppGroup_2};
    CString m_error;
};

INSTANTIATE_TEST_SUITE_P(Engines, ComposedRequests, testing::Values("builtin", "chromium"),
                         [](const auto& instance) { return std::string(instance.param); });

} // namespace

TEST_P(ComposedRequests, FormDataSetsArriveInBothEncodings) {
    CZrHbDataTransmit form;
    for (const auto& [name, value] : DifficultValues())
        form.SetField(CString(name), CString(value),
                      CZrHbDataTransmit::eDataConfidentialityType_Confidential);
    const auto encoded = Post(form.GetURLEncodedData(0).View(), form.GetURLEncodedHeader());
    EXPECT_EQ(FieldsOf(encoded["form"]), DifficultValues());
    EXPECT_EQ(encoded["data"], "");
    const auto query = Get("/get" + std::string(form.GetURLEncodedData(1).View()));
    EXPECT_EQ(FieldsOf(query["args"]), DifficultValues());

    const std::string file = "Kontoauszug f\xFCr Z\xFCrich\r\n\t\"100 %\" & mehr\n";
    form.SetFile("statement", FileWith("statement.txt", file),
                 CZrHbDataTransmit::eContentType_TextPlain, kPublic);
    ManualClock clock; // a boundary takes a second of its time
    const CString body = [&] {
        const platform::ScopedService<platform::Clock> installed(clock);
        return form.GetMultipartData();
    }();
    const auto parts = Post(body.View(), form.GetMultipartHeader());
    EXPECT_EQ(FieldsOf(parts["form"]), DifficultValues());
    EXPECT_EQ(FileOf(parts["files"]["statement"]), std::pair(std::string("text/plain"), file));
    EXPECT_EQ(parts["files"].size(), 1u);
}

TEST_P(ComposedRequests, PostStringsArriveInTheirOrder) {
    CZrHbHttpString pairs;
    for (const auto& [name, value] : DifficultValues())
        pairs.AddField(CString(name), CString(value), 1);
    EXPECT_EQ(FieldsOf(Post(pairs.GetPostString().View(), nullptr)["form"]), DifficultValues());
    pairs.Empty();
    pairs.AddField("a", "2+2", 1);
    pairs.AddField("a", "%2B+", 0);
    pairs.AddField("b", "", 1);
    pairs.AddField("a", "", 0);
    const auto repeated = Post(pairs.GetPostString().View(), nullptr)["form"];
    EXPECT_EQ(repeated, (json{{"a", {"2+2", "+ ", ""}}, {"b", ""}}));
}

TEST_P(ComposedRequests, PiecesOfMultipartFormsAndLargeFilesArrive) {
    using Form = CZrHbMultipartForm;
    const std::string large = Binary((IsBuiltin() ? 50 : 1) * kMegabyte);
    CByteBuffer body(1024, 256);
    CString error;
    ASSERT_EQ(Form::MultipartAttachFromFile_AsByteBuffer(
                  "large.bin", FileWith("large", large), "large",
                  "Content-Type: application/octet-stream", &body, error),
              1);
    for (const auto& [name, value] : DifficultValues())
        body.Add(Form::MultipartFormData2(CString(name), CString(value)));
    body.Add(Form::MultipartAttachment2("a.txt", "\xE4\n\xF6\r\n\xFC\r", "second"));
    body.Add(Form::MultipartAttachFileFromMemory3("c.csv", "\"100 %\"\n\xC4", "third",
                                                  "Content-Type: text/csv"));
    body.Add(Form::MultipartEnd2());
    EXPECT_STREQ(error, "");
    const std::string_view bytes(reinterpret_cast<const char*>(body.GetData()), body.GetSize());
    const auto reply = Post(bytes, kFormPieces);
    EXPECT_EQ(FieldsOf(reply["form"]), DifficultValues());
    const auto [type, received] = FileOf(reply["files"]["large"]);
    EXPECT_EQ(type, "application/octet-stream");
    EXPECT_TRUE(received == large) << received.size() << " bytes";
    using File = std::pair<std::string, std::string>;
    EXPECT_EQ(FileOf(reply["files"]["second"]), File("text/plain", "\xE4\r\n\xF6\r\n\xFC\r"));
    EXPECT_EQ(FileOf(reply["files"]["third"]), File("text/csv", "\"100 %\"\r\n\xC4"));
    EXPECT_EQ(reply["files"].size(), 3u);
}
