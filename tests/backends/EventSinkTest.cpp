// The event sink over scripted browsers: what each event fires, windows that pages open, sinks
// that go away during an event, sources that pass the wrong arguments.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "backends/ZrHbIE4Events.h"
#include "browser/common/BrowserEvents.h"
#include "support/ScriptedBrowser.h"

using namespace test_support;
using namespace testing;

namespace {

// A sink on the first of the scripted applications, and what its callbacks were told.
class EventSink : public Test {
public:
    ScriptedApplication applications{6};
    CComPtr<IWebBrowser2> application = Next();
    ScriptedBrowser& browser = applications[0];
    CComPtr<ScriptedBrowser> frame = MakeObject<ScriptedBrowser>();
    std::vector<std::string> notices;
    std::unique_ptr<CZrHbIE4Events> sink = std::make_unique<CZrHbIE4Events>(application);

    static CComPtr<IWebBrowser2> Next() {
        CComPtr<IWebBrowser2> browser;
        CoCreateInstance(CLSID_InternetExplorer, nullptr, CLSCTX_LOCAL_SERVER, IID_IWebBrowser2,
                         reinterpret_cast<void**>(&browser));
        return browser;
    }
    SinkNotice Note(const char* name, std::function<void()> then = {}) {
        m_contexts.push_back({this, name, std::move(then)});
        return {[](void* context) {
                    const auto [test, text, action] = *static_cast<Context*>(context);
                    test->notices.emplace_back(text);
                    if (action) action();
                },
                &m_contexts.back()};
    }
    void NoteEverything() {
        sink->SetOnNewWindowNavigated(Note("new window navigated"));
        sink->SetOnNewWindowLoaded(Note("new window loaded"));
        sink->SetOnTopNavigateComplete(Note("top navigated"));
        sink->SetOnFrameNavigateOrTopComplete(Note("frame or top"));
        sink->SetOnEachBeforeNavigate(Note("before"));
        sink->SetOnEachDocumentComplete(
            {[](void* context, const CString& page, const CString& url) {
                 static_cast<EventSink*>(context)->notices.push_back(
                     "page " + std::string(page.View()) + " of " + std::string(url.View()));
             },
             this});
    }
    std::vector<std::string> Noticed() { return std::exchange(notices, {}); }

    static void Before(ScriptedBrowser& at, IDispatch* source) {
        platform::RaiseBeforeNavigate2(at.Events(), source, {});
    }
    static void Navigated(ScriptedBrowser& at, IDispatch* source) {
        platform::RaiseNavigateComplete2(at.Events(), source, "http://h/");
    }
    static void Complete(ScriptedBrowser& at, IDispatch* source) {
        platform::RaiseDocumentComplete(at.Events(), source, "http://h/");
    }
    static CComPtr<IDispatch> NewWindow(ScriptedBrowser& at) {
        bool isCancelled = false;
        const auto window = platform::RaiseNewWindow2(at.Events(), isCancelled);
        EXPECT_FALSE(isCancelled);
        return window;
    }

private:
    struct Context {
        EventSink* test;
        const char* name;
        std::function<void()> action;
    };
    std::deque<Context> m_contexts;
};

} // namespace

TEST_F(EventSink, TellsTheTopLevelFromFramesAndFiresTheSingleCallbacksOnce) {
    ASSERT_TRUE(sink->Advise(FALSE));
    NoteEverything();
    browser.SetSource("top");
    frame->SetSource("frame");

    Before(browser, browser.Dispatch());
    EXPECT_THAT(Noticed(), ElementsAre("before"));
    Navigated(browser, frame->Dispatch());
    EXPECT_THAT(Noticed(), IsEmpty());
    for (int time = 0; time < 2; ++time)
        Navigated(browser, browser.Dispatch());
    EXPECT_THAT(Noticed(), ElementsAre("top navigated"));
    for (int time = 0; time < 2; ++time)
        Before(browser, frame->Dispatch());
    EXPECT_THAT(Noticed(), ElementsAre("before", "frame or top", "before"));

    sink->SetOnFrameNavigateOrTopComplete(Note("frame or top"));
    Complete(browser, frame->Dispatch());
    EXPECT_THAT(Noticed(), ElementsAre("page frame of http://h/"));
    for (int time = 0; time < 2; ++time)
        Complete(browser, browser.Dispatch());
    EXPECT_THAT(Noticed(),
                ElementsAre("page top of http://h/", "frame or top", "page top of http://h/"));
}

TEST_F(EventSink, ADocumentThatCannotBeReadIsAnEmptyPage) {
    ASSERT_TRUE(sink->Advise(FALSE));
    NoteEverything();
    Complete(browser, frame->Dispatch()); // it has no document
    const auto document = MakeObject<ScriptedDocument>();
    frame->document = CComPtr<IDispatch>(document);
    document->source = "partial";
    document->failing = {"Save"};
    Complete(browser, frame->Dispatch());
    document->outerHtml = "<body>";
    document->failing = {"IPersistStreamInit"};
    Complete(browser, frame->Dispatch());
    Complete(browser, nullptr);
    const auto pageWithBody = [](const char* end) {
        return AllOf(StartsWith("page <HTML>"), HasSubstr("<body>"), EndsWith(end));
    };
    const char* const empty = "page  of http://h/";
    EXPECT_THAT(Noticed(), ElementsAre(empty, empty, pageWithBody(" of http://h/"), empty));

    std::array<VARIANT, 2> arguments{}; // without a URL
    arguments[0].vt = VT_BYREF | VT_VARIANT;
    arguments[0].pvarVal = nullptr;
    arguments[1].vt = VT_DISPATCH;
    arguments[1].pdispVal = frame->Dispatch();
    DISPPARAMS params{arguments.data(), nullptr, 2, 0};
    browser.Events().Raise(DISPID_DOCUMENTCOMPLETE, params);
    EXPECT_THAT(Noticed(), ElementsAre(pageWithBody(" of ")));
}

TEST_F(EventSink, QuittingFiresWhatIsLeftInItsOrder) {
    ASSERT_TRUE(sink->Advise(FALSE));
    NoteEverything();
    for (int time = 0; time < 2; ++time)
        platform::RaiseOnQuit(browser.Events());
    EXPECT_THAT(Noticed(), ElementsAre("new window loaded", "frame or top", "new window navigated",
                                       "top navigated"));
}

TEST_F(EventSink, TheNextNewWindowTakesTheCallbacksOver) {
    ASSERT_TRUE(sink->Advise(FALSE));
    NoteEverything();
    EXPECT_TRUE(sink->IsNewWindowPossible());
    applications[1].window = 77;
    EXPECT_EQ(NewWindow(browser).Get(), applications[1].Dispatch());
    EXPECT_EQ(sink->NewBrowserWindow(), reinterpret_cast<HWND>(77));
    EXPECT_EQ(NewWindow(browser).Get(), applications[2].Dispatch());

    for (const std::size_t window : {2u, 1u}) {
        Navigated(applications[window], applications[window].Dispatch());
        Complete(applications[window], applications[window].Dispatch());
    }
    EXPECT_THAT(Noticed(), ElementsAre("new window navigated", "new window loaded"));
    platform::RaiseOnQuit(browser.Events());
    EXPECT_THAT(Noticed(), ElementsAre("frame or top", "top navigated"));
    applications[0].failing = {"get_Visible"};
    EXPECT_TRUE(sink->IsNewWindowPossible());
    applications[1].failing = {"get_Visible"};
    EXPECT_FALSE(sink->IsNewWindowPossible());
}

TEST_F(EventSink, AWindowThatCannotBeMadeIsLeftToTheBrowser) {
    ASSERT_TRUE(sink->Advise(FALSE));
    NoteEverything();
    applications[1].failing = {"get_Application"};
    EXPECT_FALSE(NewWindow(browser));
    EXPECT_EQ(applications[1].Count("Quit"), 1);
    applications[2].failing = {"Events"};
    EXPECT_TRUE(NewWindow(browser));
    while (Next()) {
    }
    EXPECT_FALSE(NewWindow(browser));
    for (const std::size_t window : {1u, 2u})
        EXPECT_EQ(applications.References(window), 0u);

    std::array<VARIANT, 2> arguments{};
    arguments[0].vt = VT_BYREF | VT_BOOL;
    arguments[0].pboolVal = nullptr;
    arguments[1].vt = VT_BYREF | VT_DISPATCH;
    arguments[1].ppdispVal = nullptr;
    DISPPARAMS params{arguments.data(), nullptr, 2, 0};
    browser.Events().Raise(DISPID_NEWWINDOW2, params);
    platform::RaiseOnQuit(browser.Events());
    EXPECT_THAT(Noticed(), SizeIs(4)); // nobody took the callbacks over
}

TEST_F(EventSink, ReleasesATreeOfWindowsWithoutItsOwnBrowser) {
    ASSERT_TRUE(sink->Advise(FALSE));
    NewWindow(browser);
    NewWindow(browser);
    NewWindow(applications[1]);
    EXPECT_EQ(applications.Created(), 4u);
    sink->ReleaseTree(false);
    for (const std::size_t window : {1u, 2u, 3u}) {
        EXPECT_EQ(applications.References(window), 0u);
        EXPECT_EQ(applications[window].Count("Quit"), 0);
        EXPECT_FALSE(applications[window].Events().HasSinks());
    }
    EXPECT_FALSE(browser.Events().HasSinks());
    EXPECT_TRUE(sink->Advise(FALSE)); // its own browser is still there
    sink->ReleaseTree(true);
    EXPECT_FALSE(sink->Advise(FALSE));
    EXPECT_EQ(applications.References(0), 1u);
    EXPECT_EQ(browser.Count("Quit"), 0);
}

TEST_F(EventSink, KeepsAllItsWindowsInvisible) {
    ASSERT_TRUE(sink->Advise(TRUE));
    NewWindow(browser);
    for (const std::size_t window : {0u, 1u}) {
        platform::RaiseOnVisible(applications[window].Events(), true);
        platform::RaiseOnVisible(applications[window].Events(), false);
        EXPECT_EQ(applications[window].Count("put_Visible 0"), 1);
    }
    sink.reset();
    EXPECT_EQ(applications[1].Count("Quit"), 1); // nobody could close it
    EXPECT_EQ(browser.Count("Quit"), 0);
    EXPECT_EQ(applications.References(0), 1u);

    sink = std::make_unique<CZrHbIE4Events>(application);
    ASSERT_TRUE(sink->Advise(FALSE));
    platform::RaiseOnVisible(browser.Events(), true);
    EXPECT_EQ(browser.Count("put_Visible 0"), 1);
}

// Each callback may be the sink's last: nothing is called after it.
TEST_F(EventSink, ACallbackMayDestroyTheSink) {
    const auto destroy = [this] { sink.reset(); };
    const auto renew = [&](void (CZrHbIE4Events::*set)(SinkNotice)) {
        sink = std::make_unique<CZrHbIE4Events>(application);
        ASSERT_TRUE(sink->Advise(FALSE));
        NoteEverything();
        (sink.get()->*set)(Note("last", destroy));
    };
    renew(&CZrHbIE4Events::SetOnEachBeforeNavigate);
    Before(browser, frame->Dispatch());
    EXPECT_THAT(Noticed(), ElementsAre("last"));
    renew(&CZrHbIE4Events::SetOnNewWindowLoaded);
    platform::RaiseOnQuit(browser.Events());
    EXPECT_THAT(Noticed(), ElementsAre("last"));
    renew(&CZrHbIE4Events::SetOnTopNavigateComplete);
    Navigated(browser, browser.Dispatch());
    EXPECT_THAT(Noticed(), ElementsAre("last"));

    renew(&CZrHbIE4Events::SetOnEachBeforeNavigate);
    sink->SetOnEachDocumentComplete({[](void* context, const CString&, const CString&) {
                                         static_cast<EventSink*>(context)->sink.reset();
                                     },
                                     this});
    Complete(browser, browser.Dispatch());
    EXPECT_THAT(Noticed(), IsEmpty());
    EXPECT_FALSE(browser.Events().HasSinks());
}

// A quitting browser may say so while its sink lets go of it.
TEST_F(EventSink, EventsDuringAndAfterItsEndAreDropped) {
    ASSERT_TRUE(sink->Advise(TRUE));
    NewWindow(browser);
    NoteEverything();
    applications[1].during["Quit"] = [this] {
        platform::RaiseOnQuit(applications[1].Events());
        platform::RaiseOnQuit(browser.Events());
        NewWindow(browser);
    };
    CComPtr<IDispatch> held;
    held.Attach(sink->GetIDispatch(TRUE));
    sink.reset();
    EXPECT_THAT(Noticed(), IsEmpty());
    EXPECT_EQ(applications.Created(), 2u);
    DISPPARAMS none;
    EXPECT_EQ(
        held->Invoke(DISPID_ONQUIT, IID{}, 0, DISPATCH_METHOD, &none, nullptr, nullptr, nullptr),
        RPC_E_DISCONNECTED);
}

TEST_F(EventSink, RefusesArgumentsThatAreNotTheEvents) {
    NoteEverything();
    IDispatch* const dispatch = sink->GetIDispatch(FALSE);
    UINT wrong = 99;
    const auto invoke = [&](DISPID event, std::vector<VARIANT> arguments,
                            WORD flags = DISPATCH_METHOD) {
        DISPPARAMS params{arguments.data(), nullptr, static_cast<UINT>(arguments.size()), 0};
        return dispatch->Invoke(event, IID{}, 0, flags, &params, nullptr, nullptr, &wrong);
    };
    VARIANT number;
    number.vt = VT_I4;
    VARIANT object;
    object.vt = VT_DISPATCH;
    object.pdispVal = nullptr;
    EXPECT_EQ(invoke(DISPID_ONQUIT, {number}), DISP_E_BADPARAMCOUNT);
    EXPECT_EQ(invoke(DISPID_DOCUMENTCOMPLETE, {object}), DISP_E_BADPARAMCOUNT);
    EXPECT_EQ(invoke(DISPID_DOCUMENTCOMPLETE, {object, object}), DISP_E_TYPEMISMATCH);
    EXPECT_EQ(wrong, 0u);
    EXPECT_EQ(invoke(DISPID_DOCUMENTCOMPLETE, {object, number}), DISP_E_TYPEMISMATCH);
    EXPECT_EQ(wrong, 1u);
    EXPECT_EQ(invoke(DISPID_NEWWINDOW2, {object, object}), DISP_E_TYPEMISMATCH);
    EXPECT_EQ(invoke(DISPID_ONVISIBLE, {number}), DISP_E_TYPEMISMATCH);
    EXPECT_EQ(invoke(DISPID_BEFORENAVIGATE2, std::vector<VARIANT>(7, number)), DISP_E_TYPEMISMATCH);
    EXPECT_EQ(invoke(4711, {}), DISP_E_MEMBERNOTFOUND);
    EXPECT_EQ(invoke(DISPID_ONQUIT, {}, DISPATCH_PROPERTYGET), DISP_E_MEMBERNOTFOUND);
    EXPECT_EQ(dispatch->Invoke(DISPID_ONQUIT, IID{}, 0, DISPATCH_METHOD, nullptr, nullptr, nullptr,
                               nullptr),
              E_POINTER);
    EXPECT_THAT(Noticed(), IsEmpty());
    EXPECT_EQ(invoke(DISPID_DOWNLOADBEGIN, {}), S_OK);
    EXPECT_EQ(invoke(DISPID_DOWNLOADCOMPLETE, {}), S_OK);
}
