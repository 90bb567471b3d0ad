#include <cctype>
#include <cstdio>
#include <string>

#include <ZrHbHtmlTools.h>
#include <gtest/gtest.h>

namespace {

using Tools = CZrHbHtmlTools;

TEST(UrlEncoding, KeepsLettersAndDigitsOnly) {
    std::string bytes;
    std::string expected;
    for (int byte = 0; byte < 256; ++byte) {
        char text[4] = {static_cast<char>(byte)};
        bytes += text[0];
        if (byte == ' ')
            text[0] = '+';
        else if (byte >= 128 || !std::isalnum(byte))
            std::snprintf(text, sizeof(text), "%%%02X", static_cast<unsigned>(byte));
        expected += text;
    }
    EXPECT_EQ(Tools::URLEncodeString(CString(bytes)).View(), expected);
}

TEST(Utf8, FromBytesAsCodePointsAndToTheAnsiCodePage) {
    EXPECT_EQ(Tools::AnsiToUTF8("Gr\xFC\xDF\x65"), "Gr\xC3\xBC\xC3\x9F\x65");
    EXPECT_EQ(Tools::AnsiToUTF8("\x80\xBF\xC0\xFF"), "\xC2\x80\xC2\xBF\xC3\x80\xC3\xBF");
    EXPECT_EQ(Tools::UTF8ToAnsi("Gr\xC3\xBC\xC3\x9F\x65"), "Gr\xFC\xDF\x65");
    EXPECT_EQ(Tools::UTF8ToAnsi("\xE2\x82\xAC"), "\x80");
    EXPECT_EQ(Tools::UTF8ToAnsi("\xE4\xB8\xADx\xF0\x9F\x98\x80"), "?x?") << "lacking";
    EXPECT_EQ(Tools::UTF8ToAnsi("a\xE2\x82|\xFF\xC3"), "a?|??") << "one for each broken part";
}

} // namespace
