#include <platform/String.h>

#include <algorithm>
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

TEST(String, ReplacesLikeALiteralReplacement) {
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

TEST(String, TakesPartsOfItselfAndNothing) {
    CString text = "a-b-";
    EXPECT_EQ(text.Replace(text.GetString() + 3, text.GetString()), 2);
    EXPECT_EQ(text, "aa-b-ba-b-");
    EXPECT_EQ(text.Replace("a-b-", nullptr), 2);
    EXPECT_EQ(text.Replace(nullptr, "x"), 0);
    text.Format("%s and %s", text.GetString(), text.GetString());
    EXPECT_EQ(text, "ab and ab");
    const std::string longText(100'000, 'x');
    text.Format("<%s|%5d|%08lx>", longText.c_str(), -12, 0x80070005UL);
    EXPECT_EQ(text.View(), "<" + longText + "|  -12|80070005>");
}

TEST(String, CutsPartsAndFindsWithinTheText) {
    const CString text = "abcdef";
    for (int count = -3; count < 10; ++count) {
        for (int first = -3; first < 10; ++first) {
            std::string expected;
            for (int i = std::max(first, 0); i < std::min(std::max(first, 0) + count, 6); ++i)
                expected += text.GetString()[i];
            EXPECT_EQ(text.Mid(first, count).View(), expected) << first << ' ' << count;
        }
        EXPECT_EQ(text.Left(count), text.Mid(0, count)) << count;
        EXPECT_EQ(text.Right(count), text.Mid(6 - count)) << count;
        EXPECT_EQ(text.Find("d", count), count <= 3 ? 3 : -1) << count;
        EXPECT_EQ(text.Find("", count), std::clamp(count, 0, 6)) << count;
    }
}

TEST(String, ComparesWithoutRegardToTheCaseOfAsciiLettersOnly) {
    EXPECT_EQ(CString("Content-TYPE[").CompareNoCase("content-type["), 0);
    EXPECT_NE(CString("\xC4").CompareNoCase("\xE4"), 0); // A and a with diaeresis
    EXPECT_LT(CString("ab").CompareNoCase("ABC"), 0);
}

} // namespace
