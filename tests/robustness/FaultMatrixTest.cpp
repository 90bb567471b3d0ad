// Each call to a service of the platform fails once: what the caller is told, and that nothing
// hangs or stays behind. The caller may simply try again.
#include <filesystem>
#include <map>
#include <memory>
#include <set>

#include <gtest/gtest.h>

#include <ZrHbAutoDial.h>
#include <ZrHbInet.h>
#include <ZrHbUHttpGet.h>
#include <platform/Exceptions.h>

#include "siblings/ZrCbRegistry.h"
#include "support/FaultPlan.h"
#include "support/ManualClock.h"
#include "support/PumpUntil.h"
#include "support/ScopedVariable.h"
#include "support/ScriptedBrowser.h"
#include "support/ScriptedInternet.h"
#include "support/TemporaryHome.h"

using namespace test_support;

namespace {

// The result codes that a failure of each call has led to, by the call's name.
using Outcomes = std::map<std::string, std::set<DWORD>>;

constexpr std::size_t kMostCalls = 500;
// Beside the result codes:
constexpr DWORD kThrown = 1000; // a hosted control's failure leaves as an exception
constexpr DWORD kNotStarted = 1001;
constexpr DWORD kIncomplete = 1002;
constexpr DWORD kUnchanged = 1003;

// Runs the scenario with the first call failing, with the second one, and so on.
template <class TScenario>
Outcomes FailEachCall(const TScenario& scenario) {
    Outcomes outcomes;
    for (std::size_t number = 0; number < kMostCalls; ++number) {
        FaultPlan plan(number);
        SCOPED_TRACE(number);
        const DWORD code = scenario(plan);
        if (plan.Failed().empty()) {
            EXPECT_EQ(code, ZRHB_OK) << "without a failure";
            return outcomes;
        }
        outcomes[plan.Failed()].insert(code);
    }
    ADD_FAILURE() << "more calls than expected";
    return outcomes;
}

ULONG ReferencesOf(ScriptedBrowser& browser) {
    browser.AddRef();
    return browser.Release();
}

struct BackendUse {
    CZrHbUHttpGet::EZrHbInterfaceVariant variant;
    const char* legacySystem; // on such a one, the browser is an application
};

class FaultMatrix : public testing::Test {
protected:
    // Connects, posts a form whose reply is a type that is shown as text, reads it, ends.
    DWORD Fetch(const BackendUse& use) {
        const ScopedVariable system("ZRHTTP_LEGACY_SYSTEM", use.legacySystem);
        CZrHbUHttpGet getter(eAppGroup_2);
        DWORD code = kThrown;
        try {
            code = FetchWith(getter, use);
            getter.Disconnect(0);
        } catch (CException* exception) {
            m_error = "thrown";
            exception->Delete();
            code = kThrown;
        }
        PumpMessages();
        return code;
    }
    // Both runs leave the browsers to those who had them before.
    DWORD FetchTwice(const BackendUse& use, FaultPlan& plan) {
        const ScriptedControl control;
        const ScriptedApplication applications(2);
        const std::vector<ScriptedBrowser*> browsers{&*control, &applications[0], &applications[1]};
        for (ScriptedBrowser* browser : browsers)
            Script(*browser, plan.Hook());
        const ULONG references = ReferencesOf(*browsers[0]) + ReferencesOf(*browsers[1]);
        DWORD code = ZRHB_OK;
        {
            FaultyServices services(plan);
            code = Fetch(use);
            services.DestroyWindows(); // the one that hosts a control in process stays
        }
        EXPECT_EQ(ReferencesOf(*browsers[0]) + ReferencesOf(*browsers[1]), references)
            << plan.Failed();
        EXPECT_EQ(code == ZRHB_OK, m_error.IsEmpty()) << plan.Failed() << m_error.GetString();
        for (ScriptedBrowser* browser : browsers)
            Script(*browser, nullptr);
        EXPECT_EQ(Fetch(use), ZRHB_OK) << plan.Failed() << m_error.GetString();
        return code;
    }

    const TemporaryHome m_home;
    ManualClock m_clock;
    platform::ScopedService<platform::Clock> m_installedClock{m_clock};
    CString m_error;

private:
    DWORD FetchWith(CZrHbUHttpGet& getter, const BackendUse& use) {
        m_error = "";
        const DWORD connected =
            getter.ConnectV3(GetDesktopWindow(), m_error, use.variant,
                             CZrHbUHttpGet::eConnectWith_InternetExplorer, 0, "", "", 0, 0);
        if (connected != ZRHB_OK) return connected;
        getter.DoNextOpenForSpecialContentType("application/x-foo");
        const DWORD opened = getter.Open("http://host/", m_error, "a=b", nullptr, FALSE);
        if (opened != ZRHB_OK) return opened;
        CByteBuffer page(16, 16);
        CString url;
        const DWORD code =
            getter.BusyRead(page, m_error, url, 5'000, FALSE, 5'000, nullptr, nullptr);
        if (code == ZRHB_OK) {
            const std::string bytes(page.GetData(), page.GetData() + page.GetSize());
            EXPECT_EQ(bytes, "<p>page");
        }
        return code;
    }
    static void Script(ScriptedBrowser& browser,
                       const std::function<bool(const std::string&)>& fails) {
        const auto document = MakeObject<ScriptedDocument>();
        document->source = "<p>page";
        document->fails = fails;
        browser.document = CComPtr<IDispatch>(document);
        browser.moments = {{READYSTATE_LOADING, true}, {}};
        browser.fails = fails;
    }
};

} // namespace

namespace {

// Of any page: what its source is read from, and the registry, which no page depends on.
const Outcomes kReading{
    {"CreateInstance", {20}},     {"get_ReadyState", {22}}, {"get_Document", {22}},
    {"IPersistStreamInit", {22}}, {"Save", {22}},           {"CreateMemoryStream", {22}},
    {"Stream.Clone", {22}},       {"Stream.Read", {22}},    {"Stream.Write", {22}},
    {"get_LocationURL", {0}},     {"KeyExists", {0}},       {"CopyTree", {0}},
    {"DeleteTree", {0}}};

Outcomes With(Outcomes all, const Outcomes& further) {
    for (const auto& [call, codes] : further)
        all[call] = codes;
    return all;
}

} // namespace

TEST_F(FaultMatrix, OfAPageInProcess) {
    const auto outcomes = FailEachCall([&](FaultPlan& plan) {
        return FetchTwice({CZrHbUHttpGet::eVisible, "0"}, plan);
    });
    EXPECT_EQ(outcomes, With(kReading, {{"Initialize", {20}},
                                        {"CreateWindow", {20}},
                                        {"AttachControl", {20}},
                                        {"Navigate2", {23}},
                                        {"get_Busy", {0, 22}}, // 0: while disconnecting
                                        {"Stop", {0}},
                                        {"Quit", {0}}}));
}

TEST_F(FaultMatrix, OfAPageOutOfProcess) {
    const auto outcomes = FailEachCall([&](FaultPlan& plan) {
        return FetchTwice({CZrHbUHttpGet::eVisible, "1"}, plan);
    });
    EXPECT_EQ(outcomes, With(kReading, {{"Initialize", {20}},
                                        {"Navigate2", {23}},
                                        {"get_Busy", {0, 22}},
                                        {"get_Visible", {0, 27}}, // is the browser still there?
                                        {"get_HWND", {0}},
                                        {"Stop", {0}},
                                        {"Quit", {0}}}));
}

TEST_F(FaultMatrix, OfAPageInAHostedControl) {
    const auto outcomes = FailEachCall([&](FaultPlan& plan) {
        return FetchTwice({CZrHbUHttpGet::eInvisible, "0"}, plan);
    });
    EXPECT_EQ(outcomes, With(kReading, {{"CreateWindow", {20}},
                                        {"AttachControl", {20}},
                                        {"put_Offline", {23}},
                                        {"Navigate2", {kThrown}},
                                        {"get_ReadyState", {kThrown}},
                                        {"get_Busy", {kThrown}},
                                        {"get_Document", {kThrown}},
                                        {"get_LocationURL", {kThrown}},
                                        {"Stop", {kThrown}}}));
}

TEST_F(FaultMatrix, OfADownload) {
    const CString file(std::string_view(m_home.Path("file")));
    const auto download = [&](FaultPlan& plan) -> DWORD {
        ScriptedInternet internet;
        internet.body = "content";
        internet.contentLength = 7;
        const platform::ScopedService<platform::Internet> installed(internet);
        internet.onCall = [&](const std::string& call) {
            internet.failing.clear();
            if (plan.Fails(call)) internet.failing.insert(call);
        };
        BOOL isStarted = FALSE;
        {
            const FaultyServices services(plan);
            CZrHbInet inet;
            isStarted = inet.StartDownloadFile("http://host/", file, nullptr);
        } // waits for the worker; the read that finds the end fails behind the whole content
        EXPECT_EQ(internet.OpenHandles(), 0u) << plan.Failed();
        const bool isComplete = m_home.ReadFile("file") == "content";
        std::filesystem::remove(m_home.Path("file"));
        internet.onCall = nullptr;
        internet.failing.clear();
        EXPECT_EQ(CZrHbInet().DownloadFile("http://host/", file), TRUE) << plan.Failed();
        std::filesystem::remove(m_home.Path("file"));
        return isComplete ? ZRHB_OK : isStarted ? kIncomplete : kNotStarted;
    };
    EXPECT_EQ(FailEachCall(download), (Outcomes{{"Start", {kNotStarted}},
                                                {"GetConnectedState", {ZRHB_OK}},
                                                {"Open", {kIncomplete}},
                                                {"OpenUrl", {kIncomplete}},
                                                {"QueryStatus", {kIncomplete}},
                                                {"QueryLength", {ZRHB_OK}},
                                                {"Read", {ZRHB_OK, kIncomplete}},
                                                {"Close", {ZRHB_OK}}}));
}

TEST_F(FaultMatrix, OfTheDialUpSetting) {
    const BYTE off = 0;
    CZrCbRegistry::SetRegistryKeyValueBinary(
        HKEY_CURRENT_USER, "Software\\Microsoft\\Windows\\CurrentVersion\\Internet Settings",
        "EnableAutodial", &off, 1, KEY_WRITE);
    const auto outcomes = FailEachCall([&](FaultPlan& plan) {
        {
            const FaultyServices services(plan);
            CZrHbAutoDial::Set_EnableAutodial(1);
        }
        return CZrHbAutoDial::Set_EnableAutodial(0) == 1 ? ZRHB_OK : kUnchanged;
    });
    EXPECT_EQ(outcomes, (Outcomes{{"GetValue", {kUnchanged}}, {"SetValue", {kUnchanged}}}));
}
