// Getters on threads of their own, each with a browser of its own, all at once.
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "support/BrowserKind.h"
#include "support/TemporaryHome.h"
#include "support/TestServer.h"

using namespace test_support;

namespace {

constexpr int kThreads = 10;
constexpr int kPages = 5;

class GettersOnThreads : public OverBrowserKinds {
protected:
    // Each page tells the thread that it is for; a thread posts every other request.
    void Fetch(int thread) {
        CZrHbUHttpGet getter(eAppGroup_2);
        Connect(getter);
        CString error;
        for (int page = 0; page < kPages; ++page) {
            std::string text = std::to_string(thread) + "-" + std::to_string(page);
            const std::string path = "/echo?" + text;
            CString source;
            CString url;
            ASSERT_EQ(getter.Open(CString(m_server.Url(path)), error,
                                  page % 2 ? text.data() : nullptr, ~DWORD{0}, nullptr, FALSE),
                      ZRHB_OK)
                << error.GetString();
            ASSERT_EQ(getter.BusyRead(source, error, url, 60'000, FALSE, 0, nullptr, nullptr),
                      ZRHB_OK)
                << error.GetString();
            EXPECT_EQ(url.View(), m_server.Url(path));
            EXPECT_TRUE(source.View().starts_with((page % 2 ? "POST " : "GET ") + path))
                << source.GetString();
        }
        getter.Disconnect(0);
    }

    const TemporaryHome m_home;
    TestServer m_server;
};

} // namespace

TEST_P(GettersOnThreads, FetchTheirOwnPages) {
    std::vector<std::thread> threads;
    for (int thread = 0; thread < kThreads; ++thread)
        threads.emplace_back([this, thread] { Fetch(thread); });
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(m_server.Requests("/echo").size(), std::size_t{kThreads} * kPages);
}

INSTANTIATE_TEST_SUITE_P(All, GettersOnThreads, OverBrowserKinds::All(), OverBrowserKinds::NameOf);
