#include <cstdint>
#include <string>
#include <vector>

#include <ZrHbHtmlTools.h>
#include <gtest/gtest.h>

#include "LiteralHtmlTools.h"

namespace {

using namespace std::string_view_literals;
using Tools = CZrHbHtmlTools;

std::string WithoutTags(std::string text) {
    CString page(std::move(text));
    Tools::HtmlPageRemoveTags(page);
    return std::string(page.View());
}

std::string WithoutSections(std::string text, const std::string& start, const std::string& end) {
    CString page(std::move(text));
    Tools::HtmlPageRemoveSections(page, CString(std::string_view(start)),
                                  CString(std::string_view(end)));
    return std::string(page.View());
}

std::string Decoded(std::string text, bool format = false) {
    CString page(std::move(text));
    Tools::HtmlPageDecode(page, format);
    return std::string(page.View());
}

std::string PureText(std::string text, bool compact = false) {
    CString page(std::move(text));
    Tools::HtmlPageMakePureText(page, compact);
    return std::string(page.View());
}

std::string Repeated(std::string_view text, std::size_t count) {
    std::string all;
    all.reserve(text.size() * count);
    while (count-- > 0)
        all += text;
    return all;
}

// A text of random pieces, the same in every run.
class RandomTexts {
public:
    std::string Next(const std::vector<std::string>& pieces, std::size_t longest) {
        std::string text;
        for (std::size_t count = Number(longest + 1); count > 0; --count)
            text += pieces[Number(pieces.size())];
        return text;
    }

private:
    std::size_t Number(std::size_t limit) {
        m_state = m_state * 6364136223846793005u + 1442695040888963407u;
        return static_cast<std::size_t>(m_state >> 33) % limit;
    }
    std::uint64_t m_state = 1;
};

std::vector<std::string> Characters(std::string_view text) {
    std::vector<std::string> characters;
    for (const char ch : text)
        characters.emplace_back(1, ch);
    return characters;
}

TEST(Tags, BecomeBlanks) {
    EXPECT_EQ(WithoutTags("a<b>c</b>d"), "a c d");
    EXPECT_EQ(WithoutTags("x>y"), "x>y");
    EXPECT_EQ(WithoutTags("a<b"), "a ");
    EXPECT_EQ(WithoutTags(std::string("\0<a<b>\0>", 8)), std::string("\0  \0>", 5));
    EXPECT_EQ(WithoutTags(""), "");
}

TEST(Sections, AreRemovedInMixedCaseUntilTheFirstWithoutEnd) {
    const std::string kPage = "a<Script x>1</sCRIPT>b<SCRIPT>2</script>c<script>";
    EXPECT_EQ(WithoutSections(kPage, "<script", "</script>"), "abc<script>");
    EXPECT_EQ(WithoutSections(kPage, "<script", "</never>"), kPage);
    EXPECT_EQ(WithoutSections(kPage, "<script", ""), kPage);
    EXPECT_EQ(WithoutSections(kPage, "", "SCRIPT>"), "");
    EXPECT_EQ(WithoutSections("a<header>b</HEAD>c", "<head", "</head>"), "ac");
    EXPECT_EQ(WithoutSections("\xE4x\xC4", "\xC4", "\xC4"), "\xE4x") << "other letters keep case";
    EXPECT_EQ(WithoutSections("<s<s>x</s>cript>", "<s", "</s>"), "cript>");
    EXPECT_EQ(WithoutSections("<s<t>/tcript>-</s>", "<t", "/t"), "<script>-</s>");
    EXPECT_EQ(WithoutSections("abcabcdbcdd", "abcd", "bc"), "dbcdd")
        << "the end inside a start that a removal has joined";

    CString page = "abc";
    Tools::HtmlPageRemoveSections(page, page, page);
    EXPECT_EQ(page, "");
}

TEST(Decoding, OfSingleReferences) {
    const char* const kCases[][2] = {{"&lt;b&gt;", "<b>"},
                                     {"&Auml;rger", "\xC4rger"},
                                     {"&#65;&#66", "AB"},
                                     {"&#321;", "A"},
                                     {"&#256;", ""},
                                     {"&#0;", ""},
                                     {"&#x41;", "x41;"},
                                     {"Tom &amp; Jerry", "Tom  Jerry"},
                                     {"a&b", "ab"},
                                     {"&unknown;", "unknown;"},
                                     {"&nbsp;", ""},
                                     {"&uml;", "uml;"},
                                     {"&amp;lt;", "lt;"},
                                     {"&#38;#65;", "#65;"},
                                     {"&copyist", "\xA9ist"},
                                     {"&;&#;&#", ";"},
                                     {"&quot;&AMP;", "\"AMP;"},
                                     {"&&lt;;", "<;"},
                                     {"a&l", "al"},
                                     {"&\xFCx&", "\xFCx"}};
    for (const auto& [text, expected] : kCases)
        EXPECT_EQ(Decoded(text), expected) << text;
    EXPECT_EQ(Decoded("&#" + Repeated("7", 1000) + "65;"), "e");
    EXPECT_EQ(Decoded("a\r\nb<br>c  d", true), "a b\nc d");
}

TEST(Decoding, KnowsTheNamesOfIso8859) {
    for (const std::string& name : literal::Latin1Names())
        EXPECT_EQ(Decoded("&" + name + "t;"), literal::Decode("&" + name + "t;", false));
}

TEST(PureTextOfAPage, IsWhatAReaderSees) {
    EXPECT_EQ(PureText("<html><head><title>T</title></head><body><h1>Title</h1>Text&nbsp;here<br>"
                       "next</body></html>"),
              "Title\nTexthere\nnext\n");
    EXPECT_EQ(PureText("a<br>\n \n\tb\r\r\n<p>c", false), "a\n\nb\r\nc\n");
    EXPECT_EQ(PureText("a<br>\n \n\tb\r\r\n<p>c", true), "a\nb\r\nc\n");
    EXPECT_EQ(PureText("\v \r\n<x>&#9;&#1;\f"), "\n");
    EXPECT_EQ(PureText(""), "\n");
}

TEST(TheOnePass, GivesWhatTheRulesGiveOneByOne) {
    const std::vector<std::vector<std::string>> kPieces = {
        Characters("<scriptSCRIPT/>&#;ab \n\r\t1"),
        Characters("<>/h1br &\n\r\t\1\v\0"sv),
        {"<br>", "<BR>", "</h1>", "</H3>", "</h4>", "<", ">", "a", " ", "\n", "\r", "&lt;", "&"},
        {"<head", "</head>", "<STYLE", "</style>", "<script", "</SCRIPT>", "<s", "<h", "cript",
         "ead", "tyle", "x", "&#", "1", "0", "3", ";", "\t"},
        {"&", "#", "1", "2", "6", ";", "amp", "lt", "gt", "n", "bsp", "no", "t", "sup", "1", "2"}};
    RandomTexts texts;
    for (int round = 0; round < 20000; ++round) {
        const std::string text = texts.Next(kPieces[static_cast<unsigned>(round) % 5], 40);
        const bool flag = round % 2 == 0;
        ASSERT_EQ(WithoutTags(text), literal::RemoveTags(text)) << text;
        ASSERT_EQ(Decoded(text, flag), literal::Decode(text, flag)) << text;
        ASSERT_EQ(PureText(text, flag), literal::PureText(text, flag)) << text;
    }
}

TEST(TheOnePass, JoinsWhatRemovedSectionsLeave) {
    RandomTexts texts;
    for (int round = 0; round < 60000; ++round) {
        const auto alphabet = Characters(round % 2 ? "aAb" : "abBc");
        const std::string start = texts.Next(alphabet, 4);
        const std::string end = texts.Next(alphabet, 3);
        const std::string page = texts.Next(alphabet, 24);
        ASSERT_EQ(WithoutSections(page, start, end), literal::RemoveSections(page, start, end))
            << page << " " << start << " " << end;
    }
}

TEST(BadPages, AreDoneInOnePassToo) {
    constexpr std::size_t kMany = 1000000;
    EXPECT_EQ(PureText(Repeated("<script", kMany)), "\n");
    EXPECT_EQ(PureText(Repeated("<scr", kMany / 10) +
                       Repeated("<script></script>ipt></script>", kMany / 10)),
              "\n");
    EXPECT_EQ(PureText(Repeated("<script>", kMany) + "</script>b" + Repeated("</script>", kMany)),
              "b\n");
    EXPECT_EQ(WithoutSections(Repeated("a", kMany), Repeated("a", 1000) + "b", "b").size(), kMany);
    EXPECT_EQ(PureText(Repeated("<br> ", kMany) + "x" + Repeated("\r\1", kMany)), "x\n");
    EXPECT_EQ(Decoded(Repeated(" <br>", kMany) + Repeated("&#", kMany), true).size(), kMany);
    EXPECT_EQ(WithoutTags(Repeated("<", kMany)), std::string(kMany, ' '));
}

TEST(TagContent, IsFoundPieceByPiece) {
    const char* const kText = "<td>1</td><td> 2 </td>";
    CString result;
    char* next = nullptr;
    EXPECT_TRUE(Tools::GetInfoBetweenHtmlTags(kText, "td", result, FALSE, FALSE, &next));
    EXPECT_EQ(result, "1");
    EXPECT_EQ(next, kText + 10);
    EXPECT_TRUE(Tools::GetInfoBetweenHtmlTags(next, "td", result, TRUE, TRUE, &next));
    EXPECT_EQ(result, "2");
    const char* const end = next;
    EXPECT_FALSE(Tools::GetInfoBetweenHtmlTags(end, "td", result, TRUE, FALSE, &next));
    EXPECT_EQ(next, end);
    EXPECT_EQ(result, "2") << "left as it was";
}

TEST(TagContent, MayBeEmptyOrMissing) {
    CString result = "x";
    EXPECT_FALSE(Tools::GetInfoBetweenHtmlTags("<td class=x>1</td>", "td", result, 0, 0, nullptr));
    EXPECT_FALSE(Tools::GetInfoBetweenHtmlTags("</td><td>1</TD>", "td", result, 0, 0, nullptr));
    EXPECT_EQ(result, "x");
    EXPECT_FALSE(Tools::GetInfoBetweenHtmlTags("<td> </td>", "td", result, 1, 1, nullptr));
    EXPECT_EQ(result, "");
    EXPECT_TRUE(Tools::GetInfoBetweenHtmlTags("<td></td>", "td", result, 0, 0, nullptr));
    char* next = nullptr;
    EXPECT_TRUE(Tools::GetInfoBetweenHtmlTags("<a></a></a>", "a></a", result, 0, 0, &next));
    EXPECT_EQ(result, "") << "the closing tag begins inside the opening one";
    EXPECT_STREQ(next, "");
}

} // namespace
