#include <cctype>
#include <cstdio>
#include <string>

#include <ZrHbHtmlTools.h>
#include <gtest/gtest.h>

namespace {

using Tools = CZrHbHtmlTools;

std::string AllBytes() {
    std::string bytes;
    for (int byte = 0; byte < 256; ++byte)
        bytes += static_cast<char>(byte);
    return bytes;
}

TEST(UrlEncoding, KeepsLettersAndDigitsOnly) {
    EXPECT_EQ(Tools::URLEncodeString("a b&c=d/e.f"), "a+b%26c%3Dd%2Fe%2Ef");
    EXPECT_EQ(Tools::URLEncodeString("\xE4~-_*"), "%E4%7E%2D%5F%2A");
    EXPECT_EQ(Tools::URLEncodeString(""), "");

    std::string expected;
    for (const char ch : AllBytes()) {
        char escape[4];
        std::snprintf(escape, sizeof(escape), "%%%02X", static_cast<unsigned char>(ch));
        const bool isAscii = static_cast<unsigned char>(ch) < 0x80;
        const bool isKept = isAscii && std::isalnum(static_cast<unsigned char>(ch));
        expected += isKept ? std::string(1, ch) : ch == ' ' ? "+" : escape;
    }
    EXPECT_EQ(Tools::URLEncodeString(CString(AllBytes())).View(), expected);
}

TEST(Utf8, FromBytesAsCodePoints) {
    EXPECT_EQ(Tools::AnsiToUTF8("Gr\xFC\xDF\x65"), "Gr\xC3\xBC\xC3\x9F\x65");
    EXPECT_EQ(Tools::AnsiToUTF8("\x80\xBF\xC0\xFF"), "\xC2\x80\xC2\xBF\xC3\x80\xC3\xBF");
    EXPECT_EQ(Tools::AnsiToUTF8(""), "");
}

TEST(Utf8, ToTheAnsiCodePage) {
    EXPECT_EQ(Tools::UTF8ToAnsi("Gr\xC3\xBC\xC3\x9F\x65"), "Gr\xFC\xDF\x65");
    EXPECT_EQ(Tools::UTF8ToAnsi("\xE2\x82\xAC"), "\x80");
    EXPECT_EQ(Tools::UTF8ToAnsi("\xE4\xB8\xADx\xF0\x9F\x98\x80"), "?x?") << "lacking";
    EXPECT_EQ(Tools::UTF8ToAnsi("a\xE2\x82|\xFF\xC3"), "a?|??") << "one for each broken part";
    EXPECT_EQ(Tools::UTF8ToAnsi(""), "");

    std::string bytes = AllBytes();
    bytes.erase(128, 32);
    EXPECT_EQ(Tools::UTF8ToAnsi(Tools::AnsiToUTF8(CString(std::string(bytes)))).View(), bytes);
}

} // namespace
