#include <random>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include <ZrHbHeaderNames.h>
#include <ZrHbHttpHeaders.h>

#include "compose/UserAgentText.h"
#include "support/ScopedVariable.h"

namespace {

using namespace std::string_literals;
using Headers = CZrHbHttpHeaders;
constexpr auto kNoHandling = static_cast<Headers::EZrHbAddHandling>(0);

CStringArray ArrayOf(const std::vector<std::string>& texts) {
    CStringArray array;
    for (const std::string& text : texts)
        array.Add(CString(text));
    return array;
}

// The rules word by word, with searches through plain lists.
class LiteralHeaders {
public:
    int Add(const std::string& name, const std::string& value, int handling) {
        if (name.empty() || value.empty()) return 0;
        for (auto& [known, current] : m_fields) {
            if (known != name) continue;
            if (handling == Headers::eAddHandling_Replace) current = value;
            return handling == 1 || handling == 2;
        }
        m_fields.emplace_back(name, value);
        return 1;
    }
    std::string Print(const std::vector<std::string>& order) const {
        auto left = m_fields;
        std::string block;
        for (const std::string& name : order)
            for (auto field = left.begin(); field != left.end(); ++field)
                if (field->first == name.c_str()) {
                    block += field->first + ": " + field->second + "\r\n";
                    left.erase(field);
                    break;
                }
        for (const auto& [name, value] : left)
            block += name + ": " + value + "\r\n";
        return block.empty() ? block : block + "\r\n";
    }

private:
    std::vector<std::pair<std::string, std::string>> m_fields;
};

} // namespace

TEST(HttpHeaders, BlocksAreTakenLineByLine) {
    const struct {
        std::string block;
        int result;
        const char* pszHeaders;
    } cases[] = {
        {"A: 1\r\nB: 2\r\n", 0, "A: 1\r\nB: 2\r\n\r\n"},
        {"A:   1  \r\nA : 2", 1, "A: 1  \r\nA : 2\r\n\r\n"},
        {"A: 1\r\nno colon\r\n: nameless\r\nempty: \r\nB:2", 0, "A: 1\r\nB: 2\r\n\r\n"},
        {"A: 1\nB: 2\rC: 3", 1, "A: 1\nB: 2\rC: 3\r\n\r\n"},
        {"A: \t\v\f\n\r1\t", 1, "A: 1\t\r\n\r\n"},
        {"A\0x: 1\0y\r\nA: 2\r\nB: \0z\r\nC: 3"s, 0, "A: 2\r\nC: 3\r\n\r\n"},
        {"", 0, ""},
    };
    for (const auto& one : cases) {
        Headers headers;
        EXPECT_EQ(headers.AddHeaders(CString(one.block), Headers::eAddHandling_Replace), one.result)
            << one.block;
        EXPECT_STREQ(headers.GetHeaders(), one.pszHeaders);
    }
}

TEST(HttpHeaders, AreOrderedWhenTheyArePrinted) {
    Headers headers;
    headers.AddHeaderFieldText(ZrHbHeader::kAccept, "1", kNoHandling);
    headers.AddHeaderFieldText("accept", "2", kNoHandling);
    EXPECT_EQ(headers.AddHeaderFieldNumeric(ZrHbHeader::kAge, 4294967295, kNoHandling), 1);
    for (const std::string& name : {"accept"s, "accept\0x"s})
        EXPECT_STREQ(headers.GetHeaderFieldValue(CString(name)), "2");
    EXPECT_STREQ(headers.GetHeaderFieldValue("ACCEPT"), "");

    const Headers copy(headers);
    headers.SetHeaderOrder(ArrayOf({"Age", "Age", "Host", "accept"}));
    Headers assigned;
    assigned = headers;
    headers.SetHeaderOrder({});
    for (const Headers* unordered : {&copy, &std::as_const(headers)})
        EXPECT_STREQ(unordered->GetHeaders(), "Accept: 1\r\naccept: 2\r\nAge: 4294967295\r\n\r\n");
    EXPECT_STREQ(assigned.GetHeaders(), "Age: 4294967295\r\naccept: 2\r\nAccept: 1\r\n\r\n");
}

TEST(HttpHeaders, EqualTheLiteralRules) {
    std::mt19937 random(7);
    const auto text = [&](unsigned longest) {
        std::string result(random() % (longest + 1), 'a');
        for (char& ch : result)
            ch = "aAb"[random() % 4]; // the last is NUL
        return result;
    };
    for (int round = 0; round < 2000; ++round) {
        Headers headers;
        LiteralHeaders literal;
        for (auto count = random() % 12; count > 0; --count) {
            const std::string name = text(2);
            const std::string value = text(3);
            const int handling = static_cast<int>(random() % 4);
            EXPECT_EQ(headers.AddHeaderFieldText(CString(name), CString(value),
                                                 static_cast<Headers::EZrHbAddHandling>(handling)),
                      literal.Add(name.c_str(), value.c_str(), handling));
        }
        std::vector<std::string> order;
        for (auto count = random() % 6; count > 0; --count)
            order.push_back(text(2));
        headers.SetHeaderOrder(ArrayOf(order));
        ASSERT_EQ(headers.GetHeaders().View(), literal.Print(order));
    }
}

TEST(UserAgent, TakesOverTheCommentAtTheEnd) {
    const std::pair<const char*, const char*> cases[] = {
        {"Mozilla/4.0 (compatible; MSIE 7.0; Windows NT 5.1)",
         "(compatible; MSIE 7.0; Windows NT 5.1)"},
        {" \tMozilla/5.0 (a) x (b)\r\n", "(a) x (b)"},
        {"Mozilla/5.0 (X11) Safari/537.36", "(compatible)"},
        {"(compatible; X)", "(compatible)"},
        {"Abcd", "Abcd"},
        {"Abcde", "(compatible)"},
        {"  ", "(compatible)"},
    };
    for (const auto& [browser, comment] : cases)
        EXPECT_STREQ(VeltrumUserAgent(browser), CString("VELTRUM e-banking Software ") + comment)
            << browser;
}

TEST(UserAgent, IsAskedForAgainWithTheRoomThatItNeeds) {
    std::vector<DWORD> sizes;
    const auto answerWith = [&](const std::string& text, HRESULT tooSmall, HRESULT enough = S_OK) {
        return [=, &sizes](char* pBuffer, DWORD size, DWORD* pLength) {
            sizes.push_back(size);
            *pLength = static_cast<DWORD>(text.size());
            if (text.size() > size) return tooSmall;
            text.copy(pBuffer, text.size());
            return enough;
        };
    };
    const std::string large(5000, 'x');
    EXPECT_EQ(AnswerOf(answerWith(std::string("text\0", 5), E_FAIL)), "text");
    EXPECT_EQ(AnswerOf(answerWith("text", E_FAIL, E_OUTOFMEMORY)), "text");
    EXPECT_EQ(AnswerOf(answerWith("text", E_FAIL, E_FAIL)), "");
    EXPECT_EQ(AnswerOf(answerWith(large, E_OUTOFMEMORY)), large);
    EXPECT_EQ(AnswerOf(answerWith(large, E_FAIL)), large);
    EXPECT_EQ(AnswerOf(answerWith(large, S_OK)), "") << "a success that is none";
    EXPECT_EQ(sizes, (std::vector<DWORD>{2048, 2048, 2048, 2048, 5001, 2048, 5001, 2048}));
}

TEST(UserAgent, IsThatOfTheControlsEngine) {
    const test_support::ScopedVariable engine("ZRHTTP_CONTROL", "builtin");
    EXPECT_STREQ(Headers::GetVeltrumUserAgentValue(),
                 "VELTRUM e-banking Software (compatible; ZrHttpBase3 builtin)");
    const test_support::ScopedVariable chromium("ZRHTTP_CONTROL", "chromium");
    const test_support::ScopedVariable nothing("ZRHTTP_BROWSER", "/nonexistent");
    EXPECT_STREQ(Headers::GetVeltrumUserAgentValue(), "VELTRUM e-banking Software (compatible)");
}
