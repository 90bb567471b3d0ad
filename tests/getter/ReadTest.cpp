// Reading pages: the step, the waiting loop, time-outs, titles, collecting, saving.

#include <optional>

#include <platform/Apartment.h>

#include "getter/GetterTest.h"
#include "support/ScriptedBrowser.h"
#include "support/TestWindow.h"

using namespace test_support;

namespace {

class ReadTest : public GetterTest {
protected:
    CZrHbUHttpGet getter{eAppGroup_2};
    CString page;
    DWORD nLength = 0;

    void SetUp() override {
        WaitForApartmentNews(1); // what earlier tests have left
        Connect(getter);
        getter.Open("http://host/opened", strErr, FALSE);
        script.calls.clear();
    }
    DWORD Step(DWORD timeout = 0, BOOL isLargeData = FALSE) {
        return getter.TestRead(page, strErr, nLength, strUrl, timeout, isLargeData);
    }
    DWORD Wait(DWORD timeout = 0, DWORD idleTimeout = 0,
               CZrHbUHttpGet::ReadCallback callback = nullptr, void* context = nullptr) {
        return getter.BusyRead(page, strErr, strUrl, timeout, FALSE, idleTimeout, callback,
                               context);
    }
    // The whole seconds without progress after which a step times out.
    DWORD SecondsUntilTimeout(DWORD timeout, BOOL isLargeData) {
        script.reads = {{.code = 10}};
        for (DWORD seconds = 0; seconds < 200; ++seconds, clock.Advance(1000))
            if (Step(timeout, isLargeData) == 24) return seconds - 1;
        return 0xFFFFFFFFu;
    }
    bool IsClosed() const { return !script.calls.empty() && script.calls.back() == "Close"; }
};

} // namespace

TEST_F(ReadTest, ADeliveredPageIsClosedUnlessItIsKept) {
    script.reads = {{.code = 0, .page = "<html>", .length = 6}};
    page = "old";
    EXPECT_EQ(Step(), 0u);
    EXPECT_EQ(page, "<html>");
    EXPECT_EQ(nLength, 6u);
    EXPECT_EQ(strUrl, "http://host/read");
    EXPECT_TRUE(IsClosed());
    EXPECT_EQ(Step(), 25u);
    EXPECT_EQ(page, "");
    EXPECT_EQ(strUrl, "");
    EXPECT_EQ(strErr, "Cannot read: no previous Open() or already Close()'d or Disconnect()-ed.");
    getter.Open("http://host/kept", strErr, 2);
    EXPECT_EQ(Step(), 0u);
    EXPECT_EQ(Step(), 0u);
    EXPECT_FALSE(IsClosed());
}

TEST_F(ReadTest, ALocationThatTheBackEndLeftOutComesFromTheBrowserOrTheLastUrl) {
    script.reads = {{.code = 0, .url = ""}};
    getter.Open("http://host/kept", strErr, TRUE);
    Step();
    EXPECT_EQ(strUrl, "http://host/kept");
    const auto browser = MakeObject<ScriptedBrowser>();
    script.browser = browser.Get();
    Step();
    EXPECT_EQ(strUrl, "http://host/final");
    browser->failing = {"get_LocationURL"};
    Step();
    EXPECT_EQ(strUrl, "");
}

TEST_F(ReadTest, AFailureClosesThePageAndLosesTrailingWhiteSpace) {
    script.reads = {{.code = 22, .error = "failed \r\n"}};
    EXPECT_EQ(Step(), 22u);
    EXPECT_EQ(strErr, "failed");
    EXPECT_TRUE(IsClosed());
    EXPECT_EQ(Step(), 25u);
}

TEST_F(ReadTest, TimesOutWhenThePageStopsGrowing) {
    script.reads = {
        {.code = 10, .length = 5}, {.code = 10, .length = 9}, {.code = 10, .length = 9}};
    clock.Advance(5000);
    EXPECT_EQ(Step(5999), 10u); // grows: counts from now
    clock.Advance(5000);
    EXPECT_EQ(Step(5999), 10u);
    clock.Advance(5000);
    EXPECT_EQ(Step(5999), 10u);
    EXPECT_EQ(Step(0), 10u);
    clock.Advance(1000);
    EXPECT_EQ(Step(5999), 24u);
    EXPECT_EQ(strErr, "Timeout occured while reading from page http://host/opened");
    EXPECT_TRUE(IsClosed());
}

TEST_F(ReadTest, LargeDataLengthensTheTimeoutByTheTimeOfThePost) {
    std::string data(120'000, 'x');
    const auto post = [&] { getter.Open("http://h/", strErr, data.data(), 120'000, nullptr, 0); };
    post();
    EXPECT_EQ(SecondsUntilTimeout(1000, FALSE), 1u);
    post();
    EXPECT_EQ(SecondsUntilTimeout(1000, 2), 130u);
    post();
    EXPECT_EQ(SecondsUntilTimeout(150'000, TRUE), 150u);
    getter.SetBaudForCalcLargeDataTimeout(120'000);
    getter.SetOffsetForCalcLargeDataTimeout_sec(2);
    post();
    EXPECT_EQ(SecondsUntilTimeout(1000, TRUE), 12u);
    getter.Open("http://h/", strErr, FALSE); // no data: no time-out for days
    EXPECT_EQ(SecondsUntilTimeout(1000, TRUE), 0xFFFFFFFFu);
    getter.SetBaudForCalcLargeDataTimeout(0); // counts as 10
    getter.Open("http://h/", strErr, data.data(), 50, nullptr, 0);
    EXPECT_EQ(SecondsUntilTimeout(1000, TRUE), 52u);
}

TEST_F(ReadTest, WaitsInPausesOf200MillisecondsUnlessThereIsNews) {
    script.reads = {{.code = 10}, {.code = 10}, {.code = 0, .page = "x", .length = 1}};
    EXPECT_EQ(MillisecondsFor([&] { EXPECT_EQ(Wait(), 0u); }), 400u);
    EXPECT_EQ(page, "x");

    getter.Open("http://h/", strErr, FALSE);
    script.reads = {{.code = 10}, {.code = 0}};
    script.onRead = [] { platform::Apartment::OfThisThread()->Post([] {}); };
    EXPECT_EQ(MillisecondsFor([&] { EXPECT_EQ(Wait(), 0u); }), 0u);
}

TEST_F(ReadTest, TheCallbackSeesTheLengthAndStopsTheWait) {
    script.reads = {{.code = 10, .length = 5}, {.code = 11, .length = 7, .error = "idle"}};
    std::vector<unsigned long> lengths;
    const auto callback = [](void* context, unsigned long length) {
        auto& seen = *static_cast<std::vector<unsigned long>*>(context);
        seen.push_back(length);
        return seen.size() == 2 ? 3 : 0;
    };
    EXPECT_EQ(Wait(0, 0, callback, &lengths), 28u);
    EXPECT_EQ(lengths, (std::vector<unsigned long>{5, 7}));
    EXPECT_EQ(strErr, "idle");
    EXPECT_FALSE(IsClosed());
}

TEST_F(ReadTest, IdleTooLongEndsTheWaitAndTheLongestIdleIsRemembered) {
    script.reads = {{.code = 11}};
    EXPECT_EQ(MillisecondsFor([&] { EXPECT_EQ(Wait(0, 15'000), 29u); }), 16'000u);
    EXPECT_EQ(strErr,
              "Idle-Timeout after 15 seconds: no new page started loading (e.g. with ONLOAD).");
    EXPECT_FALSE(IsClosed());

    getter.Open("http://h/", strErr, FALSE);
    script.reads.assign(41, {.code = 11}); // idle for 8 s, then a page
    script.reads.push_back({.code = 0});
    EXPECT_EQ(Wait(0, 15'000), 0u);
    EXPECT_EQ(getter.GetLastMaxIdleTimeEncountered().GetTotalSeconds(), 8);
    getter.Open("http://h/", strErr, FALSE);
    EXPECT_EQ(getter.GetLastMaxIdleTimeEncountered().GetTotalSeconds(), 0);
}

TEST_F(ReadTest, BringsEachTitledWindowToTheFrontOnce) {
    const TestWindow other("other");
    std::optional<TestWindow> prompt;
    int reads = 0;
    script.reads = {{.code = 10}};
    script.onRead = [&] {
        ++reads;
        if (reads == 2) prompt.emplace("prompt");
        if (reads == 3) {
            EXPECT_EQ(GetForegroundWindow(), *prompt);
            EXPECT_EQ(GetActiveWindow(), *prompt);
            SetForegroundWindow(other);
        }
        if (reads == 5) script.reads = {{.code = 0}};
    };
    CStringArray titles;
    titles.Add("never comes");
    titles.Add("prompt");
    EXPECT_EQ(getter.BusyRead2(page, strErr, &titles, 0, FALSE, nullptr, nullptr), 0u);
    EXPECT_EQ(GetForegroundWindow(), other);
    EXPECT_EQ(titles.GetSize(), 2);
}

TEST_F(ReadTest, CollectsPagesWithTheirUrlsUntilTheReadFails) {
    CStringArray pages;
    CStringArray urls;
    pages.Add("old");
    getter.Open("http://h/", strErr, TRUE);
    script.reads = {{.code = 0, .page = "one", .url = "http://1/"},
                    {.code = 10},
                    {.code = 0, .page = "two", .url = "http://2/"},
                    {.code = 11}};
    EXPECT_EQ(getter.BusyRead(pages, strErr, urls, 0, FALSE, 2000, nullptr, nullptr), 29u);
    ASSERT_EQ(pages.GetSize(), 2);
    EXPECT_EQ(pages[1], "two");
    EXPECT_EQ(urls[0], "http://1/");
    EXPECT_EQ(urls[1], "http://2/");
}

TEST_F(ReadTest, BytesKeepNulsAndTheShortFormsReadTheSame) {
    const std::string source("a\0b", 3);
    script.reads = {{.code = 0, .page = source, .length = 3}};
    CByteBuffer bytes(1024, 256);
    const auto reopened = [&] { return getter.Open("http://h/", strErr, FALSE); };
    EXPECT_EQ(getter.TestRead(bytes, strErr, nLength, strUrl, 0, FALSE), 0u);
    EXPECT_EQ(bytes.GetString(), CString(source));
    reopened();
    EXPECT_EQ(getter.BusyRead(bytes, strErr, 0, FALSE, nullptr, nullptr), 0u);
    EXPECT_EQ(bytes.GetSize(), 3u);
    reopened();
    EXPECT_EQ(getter.BusyRead(bytes, strErr, strUrl, 0, FALSE, 0, nullptr, nullptr), 0u);
    EXPECT_EQ(bytes.GetSize(), 3u);
    reopened();
    EXPECT_EQ(getter.BusyRead(page, strErr, 0, FALSE, nullptr, nullptr), 0u);
    EXPECT_EQ(page.GetLength(), 3);
}

TEST_F(ReadTest, SavesWithCrLfAndDeletesTheFileBefore) {
    const std::string path = home.Path("page.html");
    home.WriteFile("page.html", "old");
    script.reads = {{.code = 10}, {.code = 0, .page = "a\r\nb\nc\r", .length = 7}};
    EXPECT_EQ(getter.TestReadSave(path.c_str(), strErr, nLength, 0, FALSE), 10u);
    EXPECT_FALSE(home.ReadFile("page.html"));
    home.WriteFile("page.html", "put there meanwhile");
    script.reads = {{.code = 10}, {.code = 22, .error = "no"}};
    EXPECT_EQ(getter.TestReadSave(path.c_str(), strErr, nLength, 0, FALSE), 10u);
    EXPECT_TRUE(home.ReadFile("page.html")) << "deleted once an Open";
    EXPECT_EQ(getter.BusyReadSave(path.c_str(), strErr, 0, FALSE, nullptr, nullptr), 22u);
    EXPECT_FALSE(home.ReadFile("page.html"));

    script.reads = {{.code = 0, .page = "a\r\nb\nc\r", .length = 7}};
    getter.Open("http://h/", strErr, FALSE);
    EXPECT_EQ(getter.BusyReadSave(path.c_str(), strErr, 0, FALSE, nullptr, nullptr), 0u);
    EXPECT_EQ(home.ReadFile("page.html"), "a\r\nb\r\nc\r");
    getter.Open("http://h/", strErr, FALSE);
    const CString missing = home.Path("missing/page.html").c_str();
    EXPECT_EQ(getter.BusyReadSave(missing, strErr, 0, FALSE, nullptr, nullptr), 26u);
    EXPECT_EQ(strErr, "Failed to write to file '" + missing + "'.");
}
