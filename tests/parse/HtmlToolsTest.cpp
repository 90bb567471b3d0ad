#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "LiteralHtmlTools.h"

namespace {

using namespace onepass;
using namespace std::string_view_literals;
using Tools = CZrHbHtmlTools;

std::string Repeated(std::string_view text, std::size_t count) {
    std::string all;
    all.reserve(text.size() * count);
    while (count-- > 0)
        all += text;
    return all;
}

std::string RandomText(std::mt19937& random, const std::vector<std::string>& pieces,
                       std::size_t longest) {
    std::string text;
    for (std::size_t count = random() % (longest + 1); count > 0; --count)
        text += pieces[random() % pieces.size()];
    return text;
}

std::vector<std::string> Characters(std::string_view text) {
    std::vector<std::string> characters;
    for (const char ch : text)
        characters.emplace_back(1, ch);
    return characters;
}

TEST(HtmlTools, TagsBecomeBlanks) {
    EXPECT_EQ(RemoveTags("a<b>c</b>d>e<f"), "a c d>e ");
    EXPECT_EQ(RemoveTags("\0<a<b>\0>"sv), "\0  \0>"sv);
}

TEST(HtmlTools, SectionsAreRemovedInMixedCaseUntilTheFirstWithoutEnd) {
    const std::string page = "a<Script x>1</sCRIPT>b<SCRIPT>2</script>c<script>";
    EXPECT_EQ(RemoveSections(page, "<script", "</script>"), "abc<script>");
    EXPECT_EQ(RemoveSections(page, "<script", ""), page);
    EXPECT_EQ(RemoveSections(page, "", "SCRIPT>"), "");
    EXPECT_EQ(RemoveSections("\xE4x\xC4", "\xC4", "\xC4"), "\xE4x") << "other letters keep case";
    EXPECT_EQ(RemoveSections("<s<s>x</s>cript>", "<s", "</s>"), "cript>");
    EXPECT_EQ(RemoveSections("<s<t>/tcript>-</s>", "<t", "/t"), "<script>-</s>");

    CString text = "abc";
    Tools::HtmlPageRemoveSections(text, text, text);
    EXPECT_EQ(text, "");
}

TEST(HtmlTools, ReferencesAreDecodedOnce) {
    const char* const kCases[][2] = {{"&lt;b&gt;&quot;", "<b>\""},
                                     {"&Auml;rger", "\xC4rger"},
                                     {"&#65;&#66", "AB"},
                                     {"&#321;&#256;&#0;", "A"},
                                     {"&#x41;", "x41;"},
                                     {"Tom &amp; Jerry", "Tom  Jerry"},
                                     {"a&b &unknown;", "ab unknown;"},
                                     {"&nbsp;", ""},
                                     {"&uml;", "uml;"},
                                     {"&#38;#65;", "#65;"},
                                     {"&copyist", "\xA9ist"},
                                     {"&AMP;", "AMP;"},
                                     {"&&lt;;", "<;"}};
    for (const auto& [text, expected] : kCases)
        EXPECT_EQ(Decode(text, false), expected) << text;
    EXPECT_EQ(Decode("&#" + Repeated("7", 1000) + "65;", false), "e");
    EXPECT_EQ(Decode("a\r\nb<br>c  d", true), "a b\nc d");
    for (const std::string& name : literal::Latin1Names())
        EXPECT_EQ(Decode("&" + name + "t;", false), literal::Decode("&" + name + "t;", false));
}

TEST(HtmlTools, PureTextIsWhatAReaderSees) {
    EXPECT_EQ(PureText("<html><head><title>T</title></head><body><h1>Title</h1>Text&nbsp;here<br>"
                       "next</body></html>",
                       false),
              "Title\nTexthere\nnext\n");
    EXPECT_EQ(PureText("a<br>\n \n\tb\r\r\n<p>c", false), "a\n\nb\r\nc\n");
    EXPECT_EQ(PureText("a<br>\n \n\tb\r\r\n<p>c", true), "a\nb\r\nc\n");
    EXPECT_EQ(PureText("\v \r\n<x>&#9;&#1;\f", false), "\n");
}

TEST(TheOnePass, GivesWhatTheRulesGiveOneByOne) {
    const std::vector<std::vector<std::string>> kPieces = {
        Characters("<scriptSCRIPT/>&#;ab \n\r\t1"),
        Characters("<>/h1br &\n\r\t\1\v\0"sv),
        {"<br>", "<BR>", "</h1>", "</H3>", "</h4>", "<", ">", "a", " ", "\n", "\r", "&lt;", "&"},
        {"<head", "</head>", "<STYLE", "</style>", "<script", "</SCRIPT>", "<s", "<h", "cript",
         "ead", "tyle", "x", "&#", "1", "0", "3", ";", "\t"},
        {"&", "#", "1", "2", "6", ";", "amp", "lt", "gt", "n", "bsp", "no", "t", "sup", "1", "2"}};
    std::mt19937 random(1);
    for (unsigned round = 0; round < 20000; ++round) {
        const std::string text = RandomText(random, kPieces[round % 5], 40);
        const bool flag = round % 2 == 0;
        ASSERT_EQ(RemoveTags(text), literal::RemoveTags(text)) << text;
        ASSERT_EQ(Decode(text, flag), literal::Decode(text, flag)) << text;
        ASSERT_EQ(PureText(text, flag), literal::PureText(text, flag)) << text;
    }
}

TEST(TheOnePass, JoinsWhatRemovedSectionsLeave) {
    std::mt19937 random(1);
    for (int round = 0; round < 60000; ++round) {
        auto alphabet = Characters(round % 2 ? "aAb" : "abBc");
        const std::string start = RandomText(random, alphabet, round % 3 ? 4 : 8);
        for (std::size_t begin = 0; begin < start.size(); begin += 2)
            alphabet.push_back(start.substr(begin)); // what a removed beginning leaves
        const std::string end = RandomText(random, alphabet, 3);
        const std::string page = RandomText(random, alphabet, 24);
        ASSERT_EQ(RemoveSections(page, start, end), literal::RemoveSections(page, start, end))
            << page << " " << start << " " << end;
    }
}

TEST(TheOnePass, IsEnoughForBadPages) {
    constexpr std::size_t kMany = 1000000;
    EXPECT_EQ(PureText(Repeated("<script", kMany), false), "\n");
    EXPECT_EQ(PureText(Repeated("<scr", kMany / 10) +
                           Repeated("<script></script>ipt></script>", kMany / 10),
                       false),
              "\n");
    EXPECT_EQ(
        PureText(Repeated("<script>", kMany) + "</script>b" + Repeated("</script>", kMany), false),
        "b\n");
    EXPECT_EQ(RemoveSections(Repeated("a", kMany), Repeated("a", 1000) + "b", "b").size(), kMany);
    const std::string half = Repeated("b", kMany / 2);
    EXPECT_EQ(RemoveSections(Repeated("a", kMany) + half, "a" + half, "a"), half);
    EXPECT_EQ(PureText(Repeated("<br> ", kMany) + "x" + Repeated("\r\1", kMany), false), "x\n");
    EXPECT_EQ(Decode(Repeated(" <br>", kMany) + Repeated("&#", kMany), true).size(), kMany);
    EXPECT_EQ(RemoveTags(Repeated("<", kMany)), std::string(kMany, ' '));
}

TEST(TagContent, IsFoundPieceByPiece) {
    const char* const kText = "<td>1</td><td> 2 </td>";
    CString result;
    char* next = nullptr;
    EXPECT_TRUE(Tools::GetInfoBetweenHtmlTags(kText, "td", result, FALSE, FALSE, &next));
    EXPECT_EQ(result, "1");
    EXPECT_EQ(next, kText + 10);
    EXPECT_TRUE(Tools::GetInfoBetweenHtmlTags(next, "td", result, 2, 2, &next));
    EXPECT_EQ(result, "2");
    const char* const end = next;
    EXPECT_FALSE(Tools::GetInfoBetweenHtmlTags(end, "td", result, TRUE, FALSE, &next));
    EXPECT_EQ(next, end);
    EXPECT_FALSE(Tools::GetInfoBetweenHtmlTags("<td class=x>1</td>", "td", result, 0, 0, nullptr));
    EXPECT_FALSE(Tools::GetInfoBetweenHtmlTags("</td><td>1</TD>", "td", result, 0, 0, nullptr));
    EXPECT_EQ(result, "2") << "left as it was";

    EXPECT_FALSE(Tools::GetInfoBetweenHtmlTags("<td> </td>", "td", result, 2, 2, nullptr));
    EXPECT_EQ(result, "");
    EXPECT_TRUE(Tools::GetInfoBetweenHtmlTags("<td></td>", "td", result, 0, 0, nullptr));
    EXPECT_TRUE(Tools::GetInfoBetweenHtmlTags("<a></a></a>", "a></a", result, 0, 0, &next));
    EXPECT_EQ(result, "") << "the closing tag begins inside the opening one";
    EXPECT_STREQ(next, "");
}

} // namespace
