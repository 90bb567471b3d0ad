// Names and passwords: asked for, kept for one origin or proxy, and never sent elsewhere.
#include <deque>
#include <sstream>

#include <gmock/gmock.h>

#include "platform/internet/InternetClient.h"
#include "support/RawServer.h"
#include "support/ScopedVariable.h"
#include "support/TestServer.h"
#include "system/TerminalPrompt.h"

namespace platform_test {
namespace {

using namespace test_support;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

constexpr const char* kBasicOfMe = "Basic bWU6cMO8"; // me:pü

// Gives its answers in turn, then none.
class AnsweringPrompt final : public platform::Prompt {
public:
    AnsweringPrompt(std::initializer_list<std::pair<CString, CString>> answers)
        : m_answers(answers) {}
    int Ask(const CString&, UINT) override { return IDCANCEL; }
    bool AskCredentials(const CString& strText, CString& strName, CString& strPassword,
                        const std::function<bool()>&) override {
        questions.emplace_back(strText.View());
        if (m_answers.empty()) return false;
        std::tie(strName, strPassword) = m_answers.front();
        m_answers.pop_front();
        return true;
    }

    std::vector<std::string> questions;

private:
    std::deque<std::pair<CString, CString>> m_answers;
    platform::ScopedService<platform::Prompt> m_service{*this};
};

// Lets in what comes with this beginning of the field; others get the challenge.
Answer Guarded(int status, const std::string& challenge, const std::string& accepted) {
    Answer answer;
    answer.choose = [=](const ReceivedRequest& request) {
        const bool isProxy = status == 407;
        const char* field = isProxy ? "Proxy-Authorization" : "Authorization";
        if (request.Header(field).starts_with(accepted)) return Html("inside");
        Answer refusal = Html(std::string(3000, 'x'));
        refusal.status = status;
        refusal.headers = {{isProxy ? "Proxy-Authenticate" : "WWW-Authenticate", challenge}};
        return refusal;
    };
    return answer;
}

DWORD AskFor(const InternetHandle& request) {
    return InternetErrorDlg(nullptr, request.Get(), ERROR_INTERNET_INCORRECT_PASSWORD, 7, nullptr);
}

// Opens, reads and asks as long as there are answers; the last reply's status.
int OpenAsking(const InternetHandle& session, const std::string& url) {
    for (;;) {
        const InternetHandle request = OpenUrl(session, url);
        if (!request) return 0;
        EXPECT_EQ(ERROR_SUCCESS, ReadAll(request, 50).error);
        if (AskFor(request) != ERROR_INTERNET_FORCE_RETRY) return StatusOf(request);
    }
}

TEST(Authentication, TheServerIsToldWhatTheUserAnswers) {
    TestServer server;
    server.Set("/basic", Guarded(401, "Basic realm=\"E-\\\"Banking\\\"\"", kBasicOfMe));
    server.Set("/digest", Guarded(401, "Digest realm=\"r\", nonce=\"n\", qop=\"auth\"",
                                  "Digest username=\"me\""));
    const std::string asks = "The server 127.0.0.1 asks for a name and a password for ";
    {
        AnsweringPrompt prompt{{"me", "wrong"}, {"me", "p\xFC"}};
        const InternetHandle session = OpenSession();
        EXPECT_EQ(200, OpenAsking(session, server.Url("/basic")));
        EXPECT_THAT(prompt.questions,
                    ElementsAre(asks + "\"E-\"Banking\"\".",
                                asks + "\"E-\"Banking\"\". Those that were sent were not "
                                       "accepted."));
        EXPECT_EQ("inside", ReadAll(OpenUrl(session, server.Url("/basic"))).bytes);
    }
    {
        AnsweringPrompt prompt{{"me", "p"}};
        EXPECT_EQ(200, OpenAsking(OpenSession(), server.Url("/digest")));
    }
    AnsweringPrompt nobody{};
    EXPECT_EQ(401, OpenAsking(OpenSession(), server.Url("/basic")));
    EXPECT_EQ(1u, nobody.questions.size());
}

TEST(Authentication, WhatNoPasswordCanAnswerIsNotAsked) {
    AnsweringPrompt prompt{{"me", "p"}};
    TestServer server;
    server.Set("/negotiate", Guarded(401, "Negotiate", "none"));
    server.Set("/ok", Html(""));
    const InternetHandle session = OpenSession();
    EXPECT_EQ(ERROR_SUCCESS, AskFor(OpenUrl(session, server.Url("/negotiate"))));
    EXPECT_EQ(ERROR_SUCCESS, AskFor(OpenUrl(session, server.Url("/ok"))));
    EXPECT_EQ(ERROR_INTERNET_INCORRECT_HANDLE_TYPE, AskFor(session));
    EXPECT_THAT(prompt.questions, IsEmpty());
}

TEST(Authentication, AUrlsOwnAreForItsOriginOnly) {
    TestServer server;
    TestServer other;
    const Answer guarded = Guarded(401, "Basic realm=\"r\"", kBasicOfMe);
    server.Set("/in", guarded);
    server.Set("/away", Redirect(302, other.Url("/in")));
    server.Set("/around", Redirect(302, other.Url("/back")));
    other.Set("/back", Redirect(302, server.Url("/in")));
    other.Set("/in", guarded);
    const auto with = [&](const char* user, const char* path) {
        return "http://" + std::string(user) + "@127.0.0.1:" + std::to_string(server.Port()) + path;
    };
    AnsweringPrompt prompt{{"me", "p\xFC"}};
    EXPECT_EQ(200, OpenAsking(OpenSession(), with("me:p%C3%BC", "/in")));
    EXPECT_EQ(200, OpenAsking(OpenSession(), with("me:p%C3%BC", "/around")));
    EXPECT_EQ(401, StatusOf(OpenUrl(OpenSession(), with("me:p%C3%BC", "/away"))));
    EXPECT_THAT(prompt.questions, IsEmpty());
    for (const ReceivedRequest& request : other.Requests())
        EXPECT_EQ("(none)", request.Header("Authorization")) << request.target;

    // An answer takes their place. The other origin does not get it either.
    const InternetHandle session = OpenSession();
    EXPECT_EQ(200, OpenAsking(session, with("me:wrong", "/in")));
    EXPECT_EQ(401, StatusOf(OpenUrl(session, server.Url("/away"))));
}

TEST(Authentication, AnswersOnATerminal) {
    const auto answer = [](const char* lines) {
        std::istringstream input(lines);
        const auto readLine = [&](std::string& line) {
            return static_cast<bool>(std::getline(input, line));
        };
        std::ostringstream output;
        CString strName;
        CString strPassword;
        const bool isGiven = platform::AskNameOnTerminal(readLine, output, "Who?", strName) &&
                             platform::AskPasswordOnTerminal(readLine, output, strPassword);
        return isGiven ? std::string((strName + "/" + strPassword).View()) : "none";
    };
    EXPECT_EQ("me/p\xFC 1", answer("me\np\xC3\xBC 1\r\n"));
    EXPECT_EQ("me/", answer("me\n\n"));
    for (const char* lines : {"", "\np\n", "me", "me\n\x03\n"})
        EXPECT_EQ("none", answer(lines)) << lines;
}

TEST(Authentication, TheProxyIsToldWhatTheUserAnswers) {
    TestServer proxy;
    proxy.Set("http://no-such-host.invalid/", Guarded(407, "Basic realm=\"Way out\"", kBasicOfMe));
    RawServer tunnel;
    tunnel.Set("no-such-host.invalid:443", "HTTP/1.1 407 Who?\r\nProxy-Authenticate: Basic "
                                           "realm=\"Tunnel\"\r\nContent-Length: 0\r\n\r\n");
    tunnel.Set("forbidden.invalid:443", "HTTP/1.1 403 No\r\nContent-Length: 0\r\n\r\n");
    const ScopedVariable http("http_proxy", proxy.Url("").c_str());
    const ScopedVariable https("https_proxy", tunnel.Url("").c_str());
    const ScopedVariable none("no_proxy", nullptr);
    const InternetHandle session = OpenSession();
    {
        AnsweringPrompt prompt{{"me", "p\xFC"}};
        EXPECT_EQ(200, OpenAsking(session, "http://no-such-host.invalid/"));
        EXPECT_THAT(prompt.questions,
                    ElementsAre("The proxy 127.0.0.1:" + std::to_string(proxy.Port()) +
                                " asks for a name and a password for \"Way out\"."));
    }
    AnsweringPrompt prompt{{"me", "wrong"}};
    EXPECT_EQ(407, OpenAsking(session, "https://no-such-host.invalid/"));
    EXPECT_THAT(prompt.questions,
                ElementsAre(HasSubstr("\"Tunnel\"."), HasSubstr("were not accepted.")));
    EXPECT_THAT(tunnel.Requests().front(),
                Not(HasSubstr("Authorization"))); // that is another one's
    EXPECT_EQ(std::nullopt, LengthOf(OpenUrl(session, "https://no-such-host.invalid/")));
    EXPECT_FALSE(OpenUrl(session, "https://forbidden.invalid/"));
    EXPECT_EQ("the proxy refuses the connection (status 403)", LastResponseText());
}

} // namespace
} // namespace platform_test
