#include <platform/CodePage.h>

#include <gtest/gtest.h>

namespace {

using namespace platform;

std::string AllBytes() {
    std::string bytes;
    for (int byte = 0; byte < 256; ++byte)
        bytes += static_cast<char>(byte);
    return bytes;
}

TEST(CodePage, EveryByteComesBack) {
    const std::string bytes = AllBytes();
    EXPECT_EQ(AnsiFromWide(WideFromAnsi(bytes)), bytes);
    EXPECT_EQ(AnsiFromUtf8(Utf8FromAnsi(bytes)).View(), bytes);
    EXPECT_EQ(WideFromAnsi("\x80\x81\x8D\x8F\x90\x9D\x9F\xA0\xFF"),
              u"\u20AC\u0081\u008D\u008F\u0090\u009D\u0178\u00A0\u00FF");
}

TEST(CodePage, WhatItLacksBecomesAQuestionMark) {
    EXPECT_EQ(AnsiFromWide(u"\u20AC\u0080\u0394\uFFFD"), "\x80???");
    EXPECT_EQ(AnsiFromWide(u"a\U0001F600b"), "a?b") << "one character, one question mark";
    EXPECT_EQ(AnsiFromUtf8("\xE2\x82\xAC \xF0\x9F\x98\x80 \xFF"), "\x80 ? ?");
}

TEST(CodePage, Utf8AndWideAgreeOnEveryPlane) {
    const std::string utf8 = "A\xC2\x80\xDF\xBF\xE0\xA0\x80\xED\x9F\xBF\xEE\x80\x80"
                             "\xF0\x90\x80\x80\xF4\x8F\xBF\xBF";
    const std::u16string wide = u"A\u0080\u07FF\u0800\uD7FF\uE000\U00010000\U0010FFFF";
    EXPECT_EQ(WideFromUtf8(utf8), wide);
    EXPECT_EQ(Utf8FromWide(wide), utf8);
    const std::u16string unpaired = {0xD83D, u'a', 0xDE00, 0xD83D};
    EXPECT_EQ(WideFromUtf8(Utf8FromWide(unpaired)), u"\uFFFDa\uFFFD\uFFFD");
}

TEST(CodePage, EachMaximalPartOfBrokenUtf8IsReplacedOnce) {
    const struct {
        const char* utf8;
        std::u16string_view wide;
    } kCases[] = {
        {"\x80z", u"\uFFFDz"},
        {"\xC3z", u"\uFFFDz"},
        {"\xC0\x80", u"\uFFFD\uFFFD"},                     // too long a form of NUL
        {"\xE2\x82z", u"\uFFFDz"},                         // broken off
        {"\xE0\x9F\xBF", u"\uFFFD\uFFFD\uFFFD"},           // too long a form
        {"\xED\xA0\x80", u"\uFFFD\uFFFD\uFFFD"},           // a surrogate
        {"\xF0\x9F\x98", u"\uFFFD"},                       // broken off at the end
        {"\xF0\x9F\xC3\xA4", u"\uFFFD\u00E4"},             // another character begins inside
        {"\xF4\x90\x80\x80", u"\uFFFD\uFFFD\uFFFD\uFFFD"}, // beyond U+10FFFF
        {"\xF5z\xFF", u"\uFFFDz\uFFFD"},
    };
    for (const auto& [utf8, wide] : kCases)
        EXPECT_EQ(WideFromUtf8(utf8), wide) << testing::PrintToString(utf8);
}

} // namespace
