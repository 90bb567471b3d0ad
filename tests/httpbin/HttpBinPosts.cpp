#include "httpbin/HttpBinPosts.h"

#include <openssl/evp.h>

namespace test_support {
namespace {

constexpr DWORD kReadTimeoutMs = 60'000;

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

} // namespace

void HttpBinPosts::SetUp() {
    m_getter.SetSecurityTimeout(0);
    ASSERT_EQ(m_getter.ConnectV2(nullptr, m_error, CZrHbUHttpGet::eVisible,
                                 CZrHbUHttpGet::eConnectWith_InternetExplorer, 0, ""),
              ZRHB_OK)
        << m_error.GetString();
}

nlohmann::json HttpBinPosts::Get(const std::string& pathAndQuery) {
    EXPECT_EQ(m_getter.Open(CString(s_server->Url(pathAndQuery)), m_error, FALSE), ZRHB_OK)
        << m_error.GetString();
    return Read();
}

nlohmann::json HttpBinPosts::Post(std::string_view body, const char* pszHeaders) {
    EXPECT_EQ(m_getter.Open(CString(s_server->Url("/post")), m_error,
                            const_cast<char*>(body.data()), static_cast<DWORD>(body.size()),
                            pszHeaders, FALSE),
              ZRHB_OK)
        << m_error.GetString();
    return Read();
}

nlohmann::json HttpBinPosts::Read() {
    CByteBuffer page(4096, 4096);
    CString url;
    EXPECT_EQ(m_getter.BusyRead(page, m_error, url, kReadTimeoutMs, FALSE, 0, nullptr, nullptr),
              ZRHB_OK)
        << m_error.GetString();
    auto reply = nlohmann::json::parse(page.GetData(), page.GetData() + page.GetSize(), nullptr,
                                       /*allow_exceptions=*/false);
    EXPECT_TRUE(reply.is_object()) << std::string(page.GetString().View().substr(0, 1000));
    return reply;
}

CString HttpBinPosts::FileWith(std::string_view name, std::string_view content) {
    m_home.WriteFile(name, content);
    return CString(m_home.Path(name));
}

std::string Bytes(const nlohmann::json& text) {
    if (!text.is_string()) return "(no text: " + text.dump().substr(0, 1000) + ")";
    std::string bytes;
    int lead = 0;
    for (const char c : text.get_ref<const std::string&>()) {
        const int unit = static_cast<unsigned char>(c);
        if (unit >= 0xC0) {
            lead = unit & 0x3F;
            EXPECT_LT(lead, 4) << "a code point that is no byte";
            continue;
        }
        bytes += static_cast<char>(unit < 0x80 ? unit : lead << 6 | (unit & 0x3F));
    }
    return bytes;
}

UploadedFile FileOf(const nlohmann::json& file) {
    if (!file.is_string()) return {"(no file)", file.dump().substr(0, 1000)};
    const std::string_view text = file.get_ref<const std::string&>();
    constexpr std::string_view kScheme = "data:";
    constexpr std::string_view kEncoding = ";base64,";
    const std::size_t encoding = text.substr(0, 200).find(kEncoding);
    if (!text.starts_with(kScheme) || encoding == std::string_view::npos)
        return {"text", std::string(text)};
    return {std::string(text.substr(kScheme.size(), encoding - kScheme.size())),
            FromBase64(text.substr(encoding + kEncoding.size()))};
}

} // namespace test_support
