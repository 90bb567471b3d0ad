// The conversation over a browser's DevTools pipe, with a browser that does what the test wants.

#include <algorithm>
#include <atomic>
#include <csignal>
#include <ctime>
#include <future>
#include <random>
#include <thread>

#include <gmock/gmock.h>

#include "browser/chromium/FrameReader.h"
#include "platform/chromium/PipePeer.h"
#include "support/DiagnosticRecorder.h"
#include "support/PumpUntil.h"

using namespace std::chrono_literals;
using namespace std::string_literals;
using namespace testing;
using nlohmann::json;
using platform::DevToolsEvent;
using platform::DevToolsReply;
using platform_test::PipePeer;
using test_support::PumpFor;
using test_support::PumpUntil;

namespace {

constexpr std::size_t kMegabyte = 1'000'000;

std::vector<std::string> Split(const std::string& stream) {
    std::vector<std::string> messages;
    std::size_t begin = 0;
    for (std::size_t end; (end = stream.find('\0', begin)) != std::string::npos; begin = end + 1)
        messages.push_back(stream.substr(begin, end - begin));
    return messages;
}

class Transport : public testing::Test {
protected:
    // Handlers that note what they get.
    auto Noting(const std::string& name) {
        return [this, name](DevToolsReply& reply) {
            heard.push_back(name + ":" + (reply.IsOk() ? reply.result.dump() : reply.error));
        };
    }
    void Listen() {
        peer.connection->SetEventHandler(
            [this](DevToolsEvent& event) { heard.push_back(event.session + "/" + event.method); });
        peer.connection->SetEndHandler([this] { heard.push_back("end"); });
    }
    void WaitForHeard(std::size_t count) {
        PumpUntil([&] { return heard.size() >= count; }, "what the browser has sent");
    }
    // The end is known without a message being served.
    void WaitForEnd() const {
        for (int turn = 0; turn < 1000 && peer.connection->IsOpen(); ++turn)
            std::this_thread::sleep_for(5ms);
        EXPECT_FALSE(peer.connection->IsOpen());
    }

    PipePeer peer;
    std::vector<std::string> heard;
};

class BrokenProtocol : public Transport, public testing::WithParamInterface<std::string> {};

} // namespace

TEST(FrameReader, FindsTheMessagesHoweverTheStreamIsCut) {
    std::mt19937 random(7);
    for (int round = 0; round < 300; ++round) {
        std::string stream(random() % 400, 'x');
        for (char& byte : stream)
            byte = static_cast<char>(random() % 8); // every eighth is a NUL
        std::vector<std::string> messages;
        platform::FrameReader reader(1000);
        for (std::string_view rest = stream; !rest.empty();) {
            const std::size_t length = std::min<std::size_t>(rest.size(), 1 + random() % 30);
            ASSERT_TRUE(reader.Feed(rest.substr(0, length), [&](std::string_view message) {
                messages.emplace_back(message);
            }));
            rest.remove_prefix(length);
        }
        ASSERT_EQ(messages, Split(stream)) << "round " << round;
    }
}

TEST(FrameReader, StopsAtAMessageThatIsTooLong) {
    const auto feed = [](const std::vector<std::string>& pieces) {
        platform::FrameReader reader(100);
        return std::all_of(pieces.begin(), pieces.end(), [&](const std::string& piece) {
            return reader.Feed(piece, [](std::string_view) {});
        });
    };
    EXPECT_TRUE(feed({std::string(100, 'x') + '\0' + std::string(100, 'x'), "\0"s}));
    EXPECT_FALSE(feed({std::string(101, 'x') + '\0'}));
    EXPECT_FALSE(feed({"\0"s, std::string(50, 'x'), std::string(51, 'x')}));
}

TEST_F(Transport, RepliesReachTheirCallsInTheOrderOfArrival) {
    Listen();
    peer.connection->Send("", "First.call", {{"text", "\xC3\xBC\xFF"}}, Noting("first"));
    peer.connection->Send("S1", "Second.call", json::object(), Noting("second"));
    peer.connection->Send("S1", "Unheard.call", json::object());
    const json first = peer.NextCommand();
    const json second = peer.NextCommand();
    EXPECT_EQ(first["method"], "First.call");
    EXPECT_EQ(first["params"]["text"], "\xC3\xBC\xEF\xBF\xBD") << "what is no UTF-8 is replaced";
    EXPECT_FALSE(first.contains("sessionId"));
    EXPECT_EQ(second["sessionId"], "S1");
    peer.WriteMessage({{"id", second["id"]}, {"result", {{"a", 1}}}, {"sessionId", "S1"}});
    peer.WriteMessage({{"method", "Some.event"}, {"sessionId", "S1"}, {"params", json::object()}});
    peer.WriteMessage({{"id", peer.NextCommand()["id"]}, {"result", json::object()}});
    peer.WriteMessage({{"id", 4711}, {"result", json::object()}}); // nobody's
    peer.WriteMessage({{"id", first["id"]}, {"error", {{"code", -1}, {"message", "not so"}}}});
    WaitForHeard(3);
    EXPECT_THAT(heard, ElementsAre("second:{\"a\":1}", "S1/Some.event", "first:not so"));
}

TEST_P(BrokenProtocol, EndsTheConversationWithoutSayingWhatWasSent) {
    const test_support::DiagnosticRecorder recorder;
    Listen();
    peer.StopErrors();
    peer.connection->Send("", "One.call", json::object(), Noting("one"), 1h);
    peer.Write(GetParam() + '\0' + "{\"method\":\"Late.event\"}" + '\0');
    WaitForHeard(2);
    EXPECT_FALSE(peer.connection->IsOpen());
    peer.connection->Send("", "Another.call", json::object(), Noting("another"));
    WaitForHeard(3);
    EXPECT_THAT(heard, ElementsAre("one:"s + platform::kBrowserGone, "end",
                                   "another:"s + platform::kBrowserGone));
    ASSERT_THAT(recorder.Failures(), SizeIs(1));
    EXPECT_THAT(recorder.Failures()[0], Not(HasSubstr("secret")));
}

INSTANTIATE_TEST_SUITE_P(Messages, BrokenProtocol,
                         testing::Values("secret", "", "[\"secret\"]", R"({"secret":1})",
                                         R"({"method":"A.b","params":{"secret")", R"({"method":7})",
                                         R"({"id":"secret","method":"A.b"})", R"({"id":1.5})",
                                         R"({"id":4294967297,"result":{}})", // not the first call
                                         std::string(30'000, '[')));

TEST_F(Transport, WhatIsNoObjectCountsAsAnEmptyOne) {
    for (const char* call : {"one", "two"})
        peer.connection->Send("", "Any.call", json::object(), Noting(call));
    peer.connection->SetEventHandler(
        [this](DevToolsEvent& event) { heard.push_back(event.params.dump()); });
    peer.WriteMessage({{"id", peer.NextCommand()["id"]}, {"result", 7}});
    peer.WriteMessage({{"id", peer.NextCommand()["id"]}});
    peer.WriteMessage({{"method", "Some.event"}, {"params", "text"}});
    WaitForHeard(3);
    EXPECT_THAT(heard, ElementsAre("one:{}", "two:{}", "{}"));
}

TEST_F(Transport, TheBrowsersEndFailsWaitingCallsFirst) {
    Listen();
    peer.connection->Send("", "One.call", json::object(), Noting("one"));
    peer.connection->Send("", "Two.call", json::object(), Noting("two"), 1h);
    peer.WriteMessage({{"method", "Last.event"}});
    peer.Write("{\"method\":\"Half.");
    peer.StopWriting();
    WaitForEnd();
    EXPECT_THAT(heard, IsEmpty());
    WaitForHeard(4);
    EXPECT_THAT(heard, ElementsAre("/Last.event", "one:"s + platform::kBrowserGone,
                                   "two:"s + platform::kBrowserGone, "end"));
}

TEST_F(Transport, ABrowserThatNoLongerReadsIsNoticedWithTheNextCommand) {
    Listen();
    peer.StopReading();
    const std::clock_t before = std::clock();
    PumpFor(100ms);
    EXPECT_LT(std::clock() - before, CLOCKS_PER_SEC / 20) << "waiting costs no processor time";
    peer.connection->Send("", "One.call", json::object(), Noting("one"));
    WaitForHeard(2);
    EXPECT_THAT(heard, ElementsAre("one:"s + platform::kBrowserGone, "end"));
}

TEST_F(Transport, TheEndIsWaitedForAndNotHeldUpByTalk) {
    Listen();
    auto talk = std::async(std::launch::async, [&] {
        sigset_t brokenPipe;
        sigemptyset(&brokenPipe);
        sigaddset(&brokenPipe, SIGPIPE);
        pthread_sigmask(SIG_BLOCK, &brokenPipe, nullptr);
        for (int turn = 0; turn < 4000; ++turn, std::this_thread::sleep_for(5ms))
            peer.WriteError("still here\n");
    });
    peer.StopWriting();
    WaitForEnd();
    EXPECT_TRUE(peer.connection->WaitForMessages(0ms));
    peer.connection->Dispatch();
    EXPECT_THAT(heard, ElementsAre("end"));
    EXPECT_ANY_THROW(talk.get()) << "nobody reads it any more";
}

TEST_F(Transport, ACallTimesOutAlone) {
    peer.connection->Send("", "Late.call", json::object(), Noting("late"), 20ms);
    peer.connection->Send("", "Slow.call", json::object(), Noting("slow"));
    WaitForHeard(1);
    peer.WriteMessage({{"id", peer.NextCommand()["id"]}, {"result", json::object()}});
    peer.WriteMessage({{"id", peer.NextCommand()["id"]}, {"result", json::object()}});
    WaitForHeard(2);
    EXPECT_THAT(heard, ElementsAre("late:"s + platform::kCallTimedOut, "slow:{}"));
}

TEST_F(Transport, WaitsForMessagesWithoutServingThem) {
    Listen();
    EXPECT_FALSE(peer.connection->WaitForMessages(10ms));
    auto later = std::async(std::launch::async, [&] {
        std::this_thread::sleep_for(20ms);
        peer.WriteMessage({{"method", "Some.event"}});
    });
    EXPECT_TRUE(peer.connection->WaitForMessages(1h));
    EXPECT_THAT(heard, IsEmpty());
    peer.connection->Dispatch();
    EXPECT_THAT(heard, ElementsAre("/Some.event"));
}

TEST_F(Transport, ABrowserThatIsFasterThanItsOwnerHasToWait) {
    constexpr int kEvents = 90;
    std::atomic<int> sent{0};
    auto writer = std::async(std::launch::async, [&] {
        const std::string data = R"(","params":{"data":")" + std::string(kMegabyte, 'x') + "\"}}";
        for (int i = 0; i < kEvents; ++i, ++sent)
            peer.Write("{\"method\":\"" + std::to_string(i) + data + '\0');
    });
    for (int turn = 0; turn < 6000 && sent < 65; ++turn)
        std::this_thread::sleep_for(10ms);
    EXPECT_GE(sent, 65);
    std::this_thread::sleep_for(100ms);
    EXPECT_LT(sent, 75);
    Listen();
    WaitForHeard(kEvents);
    for (std::size_t i = 0; i < heard.size(); ++i)
        ASSERT_EQ(heard[i], "/" + std::to_string(i));
}

TEST_F(Transport, AHandlerMayServeTheNextMessages) {
    std::vector<std::string> order;
    peer.connection->SetEventHandler([&](DevToolsEvent& event) {
        order.push_back("begin " + event.method);
        if (event.method == "1") peer.connection->Dispatch();
        order.push_back("end " + event.method);
    });
    for (const char* method : {"1", "2", "3"})
        peer.WriteMessage({{"method", method}});
    PumpUntil([&] { return order.size() == 6; }, "three events");
    EXPECT_EQ(order[0], "begin 1");
    EXPECT_LT(std::find(order.begin(), order.end(), "end 2"),
              std::find(order.begin(), order.end(), "begin 3"));
}

TEST_F(Transport, NothingIsHeardAfterClosing) {
    Listen();
    peer.connection->Send("", "Other.call", json::object(), Noting("other"));
    peer.connection->SetEventHandler([&](DevToolsEvent&) {
        heard.push_back("event");
        peer.connection->Send("", "Last.call", {{"data", std::string(kMegabyte, 'x')}},
                              Noting("last"));
        peer.connection->Close();
        peer.connection.reset(); // the last reference
    });
    peer.WriteMessage({{"method", "1"}});
    peer.WriteMessage({{"method", "2"}});
    WaitForHeard(1);
    EXPECT_EQ(peer.NextCommand()["method"], "Other.call");
    EXPECT_EQ(peer.NextCommand()["method"], "Last.call") << "what was sent still goes out";
    EXPECT_EQ(peer.NextText(), std::nullopt);
    PumpFor(20ms);
    EXPECT_THAT(heard, ElementsAre("event"));
}

TEST_F(Transport, KeepsTheLastLinesOfTheErrorOutput) {
    Listen();
    for (int line = 0; line < 10'000; ++line)
        peer.WriteError("line " + std::to_string(line) + "\n");
    peer.WriteError("last words");
    peer.StopWriting();
    WaitForHeard(1);
    const std::string output = peer.connection->ErrorOutput();
    EXPECT_EQ(output.size(), 4096u);
    EXPECT_TRUE(output.ends_with("line 9999\nlast words"));
}
