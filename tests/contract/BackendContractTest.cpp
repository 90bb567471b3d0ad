// What every browser back-end promises, whatever browser stands behind it.
#include <array>
#include <memory>
#include <optional>
#include <set>
#include <vector>

#include <gtest/gtest.h>

#include <ZrHbResultCodes.h>
#include <platform/Exceptions.h>
#include <platform/Window.h>

#include "getter/BackendFactory.h"
#include "support/PumpUntil.h"
#include "support/RawServer.h"
#include "support/ScriptedBrowser.h"
#include "support/TemporaryHome.h"
#include "support/TestServer.h"

using namespace test_support;

namespace {

enum class Engine { scripted, builtin, chromium };
using Combination = std::tuple<BackendKind, Engine>;

constexpr const char* NameOf(Engine engine) {
    constexpr std::array<const char*, 3> names{"scripted", "builtin", "chromium"};
    return names[static_cast<std::size_t>(engine)];
}

constexpr const char* NameOf(BackendKind kind) {
    constexpr std::array<const char*, 3> names{"ControlHosting", "OutOfProcess", "InProcess"};
    return names[static_cast<std::size_t>(kind)];
}

constexpr std::size_t kConnections = 3; // the most in one test

class BackendContract : public testing::TestWithParam<Combination> {
protected:
    BackendContract()
        : m_kind(std::get<0>(GetParam())), m_engine(std::get<1>(GetParam())),
          m_control("ZRHTTP_CONTROL", NameOf(m_engine)),
          m_application("ZRHTTP_APPLICATION", NameOf(m_engine)),
          m_backend(BackendFactory::Real().Create(m_kind, 2)) {
        if (m_engine != Engine::scripted) return;
        m_scriptedControl.emplace();
        m_scriptedApplication.emplace(kConnections);
    }

    ~BackendContract() override { m_backend->Disconnect(); }

    // A page at a path; the scripted browser shows the page that was set last.
    void Serve(const std::string& path, const Answer& answer) {
        m_server.Set(path, answer);
        if (m_engine != Engine::scripted) return;
        (*m_scriptedControl)->SetSource(answer.body);
        for (std::size_t index = 0; index < kConnections; ++index)
            (*m_scriptedApplication)[index].SetSource(answer.body);
    }

    DWORD Connect() { return m_backend->Connect(GetDesktopWindow(), m_error); }
    DWORD Open(const std::string& url, const std::string& post = "",
               const char* pszHeaders = nullptr, BOOL bKeepPageOpen = FALSE) {
        return m_backend->Open(CString(url), m_error, post.empty() ? nullptr : post.data(),
                               static_cast<DWORD>(post.size()), pszHeaders, bKeepPageOpen);
    }
    template <class TPage>
    DWORD Read(TPage& page) {
        DWORD code = ZRHB_STILL_LOADING;
        PumpUntil(
            [&] {
                code = m_backend->Read(page, m_error, m_length, m_url);
                return code != ZRHB_STILL_LOADING;
            },
            "the end of the page");
        return code;
    }
    // The bytes of a page that loads.
    std::string Load(const std::string& path, const std::string& post = "") {
        EXPECT_EQ(Open(m_server.Url(path), post), ZRHB_OK) << m_error.GetString();
        CByteBuffer page(4096, 4096);
        EXPECT_EQ(Read(page), ZRHB_OK) << m_error.GetString();
        EXPECT_EQ(page.GetSize(), m_length);
        return {page.GetData(), page.GetData() + page.GetSize()};
    }

    // A page whose reply waits, and the one after it: 10 for each until it is there, and never the
    // page before it.
    void ReadsOnlyWhatIsComplete() {
        for (const std::string body : {"first", "second"}) {
            Answer answer = Html(body);
            answer.gate = std::make_shared<Gate>();
            m_server.Set("/waiting", answer);
            ASSERT_EQ(Open(m_server.Url("/waiting")), ZRHB_OK);
            CString page;
            for (int look = 0; look < 5; ++look) {
                PumpFor(std::chrono::milliseconds(10));
                EXPECT_EQ(m_backend->Read(page, m_error, m_length, m_url), ZRHB_STILL_LOADING);
                EXPECT_STREQ(page, "");
            }
            answer.gate->Open();
            EXPECT_EQ(Read(page), ZRHB_OK) << m_error.GetString();
            EXPECT_STREQ(page, CString(body));
        }
    }

    const TemporaryHome m_home;
    const BackendKind m_kind;
    const Engine m_engine;
    const ScopedVariable m_control;
    const ScopedVariable m_application;
    TestServer m_server;
    std::optional<ScriptedControl> m_scriptedControl;
    std::optional<ScriptedApplication> m_scriptedApplication;
    std::unique_ptr<CZrHbHttpGet> m_backend;
    CString m_error;
    CString m_url;
    DWORD m_length = 0;
};

TEST_P(BackendContract, WithoutAConnectionNothingWorksAndNothingBreaks) {
    CString page;
    EXPECT_EQ(Open("http://host/"), ZRHB_OPEN_NOT_CONNECTED);
    EXPECT_STREQ(m_error, "Open failed because: not connected.");
    EXPECT_EQ(m_backend->Read(page, m_error, m_length, m_url), ZRHB_NO_OPEN_PAGE);
    EXPECT_STREQ(m_error, "Read: No previous Connect() and Open() or already Disconnected.");
    CByteBuffer bytes(16, 16);
    EXPECT_EQ(m_backend->Read(bytes, m_error, m_length, m_url), ZRHB_NO_OPEN_PAGE);
    m_backend->Close();
    m_backend->Disconnect();
    m_backend->PutVisible(TRUE);
    if (m_kind == BackendKind::outOfProcess) m_backend->KeepThisFrameOpen();
    EXPECT_EQ(m_backend->Get_IWebBrowser2_ptr(m_error), nullptr);
    EXPECT_FALSE(m_error.IsEmpty());
}

TEST_P(BackendContract, PagesComeAsTheyWereSent) {
    const std::string bytes("<p>M\xFCller \0 \x80</p>", 17);
    Serve("/bytes", Html(bytes));
    ASSERT_EQ(Connect(), ZRHB_OK) << m_error.GetString();
    EXPECT_STREQ(m_error, "");
    EXPECT_EQ(m_backend->Get_IWebBrowser2_ptr(m_error) != nullptr,
              m_kind != BackendKind::controlHosting); // which keeps its browser to itself
    EXPECT_EQ(Load("/bytes"), bytes);
    EXPECT_STREQ(m_error, "");
    Serve("/text", Html("<p>text</p>"));
    ASSERT_EQ(Open(m_server.Url("/text")), ZRHB_OK);
    CString page;
    EXPECT_EQ(Read(page), ZRHB_OK);
    EXPECT_STREQ(page, "<p>text</p>");
    EXPECT_EQ(m_length, 11u);
    const bool isFromServer = m_engine != Engine::scripted;
    EXPECT_STREQ(m_url,
                 isFromServer ? CString(m_server.Url("/text")) : CString("http://host/final"));
    if (isFromServer) ReadsOnlyWhatIsComplete();
    ASSERT_EQ(Connect(), ZRHB_OK) << m_error.GetString(); // in place of the one that stands
    Serve("/text", Html("<p>text</p>"));
    ASSERT_EQ(Open(m_server.Url("/text")), ZRHB_OK);
    m_backend->Close(); // while it loads
    EXPECT_EQ(Load("/text"), "<p>text</p>");
    m_backend->Disconnect();
    m_backend->Disconnect();
    EXPECT_EQ(Open(m_server.Url("/text")), ZRHB_OPEN_NOT_CONNECTED);
    ASSERT_EQ(Connect(), ZRHB_OK) << m_error.GetString();
    EXPECT_EQ(Load("/text"), "<p>text</p>");
}

TEST_P(BackendContract, RequestsGoOutAsTheyWereGiven) {
    if (m_engine == Engine::scripted) return; // asks nobody
    m_server.Set("/moved", Redirect(302, "/echo"));
    m_server.Set("/form", Html("accepted"));
    ASSERT_EQ(Connect(), ZRHB_OK) << m_error.GetString();
    const std::string post("a=1&b=\0\xFF", 8);
    EXPECT_EQ(Load("/form", post), "accepted");
    const ReceivedRequest request = m_server.Requests("/form").at(0);
    EXPECT_EQ(request.method, "POST");
    EXPECT_EQ(request.body, post);
    EXPECT_EQ(request.Header("Content-Type"), "application/x-www-form-urlencoded");
    ASSERT_EQ(Open(m_server.Url("/form"), post, "X-Own: 1\r\nContent-Type: text/own"), ZRHB_OK);
    CString page;
    ASSERT_EQ(Read(page), ZRHB_OK);
    EXPECT_EQ(m_server.Requests("/form").at(1).body, post);
    EXPECT_EQ(m_server.Requests("/form").at(1).Header("X-Own"), "1");
    EXPECT_EQ(m_server.Requests("/form").at(1).Header("Content-Type"), "text/own");
    Load("/moved");
    EXPECT_EQ(m_server.Requests("/echo").at(0).Header("X-Own"), "(none)");
    EXPECT_STREQ(m_url, CString(m_server.Url("/echo")));
    EXPECT_EQ(Load("/missing"), "<p>no such page</p>"); // an error page is a page
}

TEST_P(BackendContract, AFailedPageIsToldAndTheNextOneLoads) {
    if (m_engine == Engine::scripted) return; // asks nobody
    m_server.Set("/data", Bytes("application/x-data", "1"));
    m_server.Set("/page", Html("page"));
    RawServer broken;
    broken.Set("/", "HTTP/1.1 200 OK\r\nContent-Type: text/html\r\nContent-Length: 9\r\n\r\nhalf");
    ASSERT_EQ(Connect(), ZRHB_OK) << m_error.GetString();
    for (const std::string& url :
         {std::string("http://127.0.0.1:1/"), m_server.Url("/data"), broken.Url("/")}) {
        ASSERT_EQ(Open(url), ZRHB_OK) << url;
        CString page;
        EXPECT_EQ(Read(page), ZRHB_READ_FAILED) << url;
        EXPECT_EQ(m_length, 0u) << url;
        EXPECT_FALSE(m_error.IsEmpty()) << url;
    }
    EXPECT_EQ(Load("/page"), "page");
}

TEST_P(BackendContract, TheApplicationHandsOutEveryDocumentAndOpensNewWindows) {
    if (m_engine == Engine::scripted || m_kind != BackendKind::outOfProcess) return;
    const std::string top = "<iframe src=/1></iframe><iframe src=/2></iframe>";
    m_server.Set("/", Html(top));
    m_server.Set("/1", Html("one"));
    m_server.Set("/2", Html("two"));
    ASSERT_EQ(Connect(), ZRHB_OK) << m_error.GetString();
    ASSERT_EQ(Open(m_server.Url("/"), "", nullptr, TRUE), ZRHB_OK);
    std::vector<std::string> pages;
    CString page;
    const auto collect = [&] {
        const DWORD code = m_backend->Read(page, m_error, m_length, m_url);
        if (code == ZRHB_OK) pages.emplace_back((m_url + " " + page).View());
        return code == ZRHB_LOADED_IDLE && !pages.empty();
    };
    PumpUntil(collect, "the end of the collection");
    ASSERT_EQ(pages.size(), 3u);
    EXPECT_EQ(pages.back(), m_server.Url("/") + " " + top);
    EXPECT_EQ(std::set<std::string>(pages.begin(), pages.end() - 1),
              (std::set<std::string>{m_server.Url("/1") + " one", m_server.Url("/2") + " two"}));

    m_backend->Close();
    if (m_engine == Engine::chromium) return; // its window would stay open for the user
    m_backend->PrepareOpenInNewWindow();
    ASSERT_EQ(Open(m_server.Url("/echo"), "a=1"), ZRHB_OK);
    EXPECT_EQ(m_server.Requests("/echo").at(0).body, "a=1");
    EXPECT_EQ(m_backend->Read(page, m_error, m_length, m_url), ZRHB_READ_FAILED);
    EXPECT_EQ(Load("/1"), "one");
}

INSTANTIATE_TEST_SUITE_P(
    Backends, BackendContract,
    testing::Combine(testing::Values(BackendKind::controlHosting, BackendKind::outOfProcess,
                                     BackendKind::inProcess),
                     testing::Values(Engine::scripted, Engine::builtin, Engine::chromium)),
    [](const auto& one) {
        return std::string(NameOf(std::get<0>(one.param))) + "_" + NameOf(std::get<1>(one.param));
    });

} // namespace
