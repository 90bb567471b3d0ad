// Which of a browser's requests are held up, and for what.
#include <gmock/gmock.h>

#include "browser/chromium/PostGuard.h"

using namespace testing;
using nlohmann::json;
using platform::PostGuard;

namespace {

// The browser's side of the conversation: what it says, and what it is told.
class Guard : public testing::Test {
protected:
    explicit Guard(bool isRepeatAllowed = false)
        : guard([this](const std::string& message) { Hear(json::parse(message)); },
                isRepeatAllowed) {
        guard.Watch("context");
        Event("", "Target.attachedToTarget",
              {{"sessionId", "P"}, {"targetInfo", {{"targetId", "page"}, {"type", "page"}}}});
        heard.clear();
    }

    void Hear(const json& message) {
        heard.push_back(message);
        // Nobody waits for what is let go.
        if (!message["method"].get<std::string>().starts_with("Fetch.")) call = message["id"];
    }
    bool Event(const char* session, const char* method, json params) {
        json event{{"method", method}};
        event["params"] = std::move(params);
        if (*session) event["sessionId"] = session;
        return guard.Take(event);
    }
    void Pause(const std::string& name, const char* method, const char* frame = "page",
               const char* type = "Document") {
        EXPECT_TRUE(Event("", "Fetch.requestPaused",
                          {{"requestId", name},
                           {"networkId", "network " + name},
                           {"frameId", frame},
                           {"resourceType", type},
                           {"request", {{"url", "http://a.test/"}, {"method", method}}}}));
    }
    void Request(const char* name) {
        EXPECT_FALSE(Event("P", "Network.requestWillBeSent",
                           {{"requestId", name}, {"request", {{"url", "http://a.test/"}}}}));
    }
    // To the call that is open.
    void Answer(json result, const char* key = "result") {
        json reply{{"id", call}};
        reply[key] = std::move(result);
        EXPECT_TRUE(guard.Take(reply));
    }
    void ShowPage() {
        Answer({{"targetId", "helper"}});
        Answer({{"sessionId", "H"}});
    }
    void Close() { Answer({{"result", {{"type", "undefined"}}}}); }
    // Since the last time: methods, with the request or what is to be closed.
    std::vector<std::string> Told() {
        std::vector<std::string> told;
        for (const json& message : std::exchange(heard, {})) {
            const json& params = message["params"];
            const std::string script = params.value("expression", "");
            if (message["method"] == "Fetch.enable") {
                told.push_back(params["patterns"].size() == 1 ? "hold all" : "hold some");
                continue;
            }
            told.push_back(message["method"].get<std::string>() + " " +
                           (script.empty() ? params.value("requestId", "")
                            : script.find("flushSocketPools") != std::string::npos ? "all"
                                                                                   : "idle") +
                           params.value("errorReason", ""));
        }
        return told;
    }

    std::vector<json> heard;
    int call = 0; // whose answer is waited for
    PostGuard guard;
};

class LenientGuard : public Guard {
protected:
    LenientGuard() : Guard(true) {}
};

} // namespace

TEST_F(Guard, HoldsPostDataUntilConnectionsAreClosedAndTheRestMeanwhile) {
    Pause("get", "GET");
    EXPECT_THAT(Told(), ElementsAre("Fetch.continueRequest get"));
    Pause("post", "POST");
    ShowPage();
    EXPECT_THAT(Told(), ElementsAre("hold all", "Target.createTarget ", "Target.attachToTarget ",
                                    "Runtime.evaluate idle"));
    Close();
    EXPECT_THAT(Told(), ElementsAre("Runtime.evaluate all"));
    Pause("icon", "GET", "", "Other");
    EXPECT_THAT(Told(), IsEmpty());
    Close();
    EXPECT_THAT(Told(), ElementsAre("Fetch.continueRequest post", "hold some",
                                    "Fetch.continueRequest icon"));
    EXPECT_EQ(guard.WhatBrowserCan(), PostGuard::Ability::once);
}

// Closing all would end what the page is loading.
TEST_F(Guard, AFramesPostDataWaitForWhatIsUnderWayAndAScriptsTakeWhatThereIs) {
    Request("image");
    Pause("frame", "POST", "inner");
    ShowPage();
    Told();
    Close();
    EXPECT_THAT(Told(), IsEmpty());
    EXPECT_LT(guard.NextTime(), std::chrono::steady_clock::now() + std::chrono::seconds(1));
    Pause("script", "PUT", "page", "XHR");
    Close();
    EXPECT_THAT(Told(), ElementsAre("Runtime.evaluate idle", "Runtime.evaluate idle"));
    Close();
    EXPECT_THAT(Told(), ElementsAre("Fetch.continueRequest script"));
    EXPECT_FALSE(Event("P", "Network.loadingFinished", {{"requestId", "image"}}));
    EXPECT_THAT(Told(), ElementsAre("Runtime.evaluate all"));
}

TEST_F(Guard, RefusesPostDataWhereNothingCanBeClosed) {
    Pause("post", "POST");
    ShowPage();
    Answer({{"exceptionDetails", {{"exception", {{"description", "Error: no such page"}}}}}});
    EXPECT_THAT(Told(), Contains("Fetch.failRequest postBlockedByClient"));
    Pause("again", "POST");
    EXPECT_THAT(Told(), ElementsAre("Fetch.failRequest againBlockedByClient"));
}

TEST_F(LenientGuard, SendsThemAllTheSame) {
    Pause("post", "POST");
    Answer({{"message", "no hidden targets"}}, "error");
    EXPECT_THAT(Told(), Contains("Fetch.continueRequest post"));
}

// A page that has gone is made anew; one that never answers is given up.
TEST_F(Guard, MakesThePageAnewOrGivesUp) {
    Pause("post", "POST");
    ShowPage();
    Told();
    EXPECT_TRUE(Event("", "Target.detachedFromTarget", {{"sessionId", "H"}}));
    EXPECT_THAT(Told(), ElementsAre("Target.createTarget "));
    EXPECT_GT(guard.NextTime(), std::chrono::steady_clock::now());
    guard.OnTime();
    EXPECT_THAT(Told(), ElementsAre("Fetch.failRequest postAccessDenied", "hold some"));
}
