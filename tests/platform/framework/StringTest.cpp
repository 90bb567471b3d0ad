#include <platform/String.h>

#include <random>

#include <gtest/gtest.h>

namespace {

// Texts of few letters and very short samples, so that occurrences are many and overlap.
std::string RandomText(std::mt19937& random, std::size_t longest) {
    std::string text(std::uniform_int_distribution<std::size_t>(0, longest)(random), 'a');
    for (char& ch : text)
        ch = "ab"[std::uniform_int_distribution<int>(0, 1)(random)];
    return text;
}

std::string ReplacedLiterally(const std::string& text, const std::string& oldText,
                              const std::string& newText, int& count) {
    std::string result;
    count = 0;
    for (std::size_t i = 0; i < text.size();) {
        if (!oldText.empty() && text.compare(i, oldText.size(), oldText) == 0) {
            result += newText;
            i += oldText.size();
            ++count;
        } else {
            result += text[i++];
        }
    }
    return result;
}

TEST(StringReplace, MatchesALiteralReplacement) {
    std::mt19937 random(20240607);
    for (int round = 0; round < 20000; ++round) {
        const std::string text = RandomText(random, 24);
        const std::string oldText = RandomText(random, 3);
        const std::string newText = RandomText(random, 4);
        int expectedCount = 0;
        const std::string expected = ReplacedLiterally(text, oldText, newText, expectedCount);
        CString replaced(text.c_str());
        ASSERT_EQ(replaced.Replace(oldText.c_str(), newText.c_str()), expectedCount);
        ASSERT_EQ(replaced.View(), expected) << text << " / " << oldText << " / " << newText;
    }
}

TEST(StringReplace, TakesPartsOfItselfAndNothing) {
    CString text = "a-b-";
    EXPECT_EQ(text.Replace(text.GetString() + 3, text.GetString()), 2);
    EXPECT_EQ(text, "aa-b-ba-b-");
    EXPECT_EQ(text.Replace("a-b-", nullptr), 2);
    EXPECT_EQ(text, "ab");
    EXPECT_EQ(text.Replace(nullptr, "x"), 0);
    CString withNul("x\0x", 3);
    EXPECT_EQ(withNul.Replace("x", "yy"), 2);
    EXPECT_EQ(withNul.View(), std::string_view("yy\0yy", 5));
}

TEST(StringParts, AreCutToTheText) {
    const CString text = "abcdef";
    EXPECT_EQ(text.Left(2), "ab");
    EXPECT_EQ(text.Left(-1), "");
    EXPECT_EQ(text.Left(99), "abcdef");
    EXPECT_EQ(text.Right(2), "ef");
    EXPECT_EQ(text.Right(-3), "");
    EXPECT_EQ(text.Right(99), "abcdef");
    EXPECT_EQ(text.Mid(4), "ef");
    EXPECT_EQ(text.Mid(7), "");
    EXPECT_EQ(text.Mid(-2, 3), "abc");
    EXPECT_EQ(text.Mid(4, 99), "ef");
    EXPECT_EQ(text.Mid(4, -1), "");
}

TEST(StringFind, StartsWhereToldAndSeesOverlaps) {
    const CString text = "aabaab";
    EXPECT_EQ(text.Find("ab"), 1);
    EXPECT_EQ(text.Find("ab", 2), 4);
    EXPECT_EQ(text.Find("ab", 5), -1);
    EXPECT_EQ(text.Find("ab", 99), -1);
    EXPECT_EQ(text.Find("ab", -5), 1);
    EXPECT_EQ(text.Find("", 3), 3);
    EXPECT_EQ(text.Find("", 99), 6);
    EXPECT_EQ(text.Find('b', 3), 5);
    EXPECT_EQ(text.Find('b', 6), -1);
    EXPECT_EQ(text.ReverseFind('a'), 4);
    EXPECT_EQ(text.ReverseFind('x'), -1);
}

TEST(StringCompare, IgnoresTheCaseOfAsciiLettersOnly) {
    EXPECT_EQ(CString("Content-TYPE[").CompareNoCase("content-type["), 0);
    EXPECT_NE(CString("\xC4").CompareNoCase("\xE4"), 0); // A and a with diaeresis
    EXPECT_NE(CString("@[").CompareNoCase("`{"), 0);
    EXPECT_LT(CString("ab").CompareNoCase("ABC"), 0);
    EXPECT_GT(CString("ab\xFC").CompareNoCase("ABC"), 0);
    EXPECT_GT(CString("a").CompareNoCase(nullptr), 0);
}

TEST(StringFormat, GrowsAndMayUseItself) {
    CString text;
    const std::string longText(100'000, 'x');
    text.Format("<%s|%5d|%08lx>", longText.c_str(), -12, 0x80070005UL);
    EXPECT_EQ(text.View(), "<" + longText + "|  -12|80070005>");
    text = "me";
    text.Format("%s and %s", text.GetString(), text.GetString());
    EXPECT_EQ(text, "me and me");
}

} // namespace
