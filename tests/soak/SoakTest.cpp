// Long use: many pages, many browsers. What a process holds must not grow with it. Not among the
// tests of every day; run by scripts/soak.
#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iostream>

#include <malloc.h>

#include <gtest/gtest.h>

#include "BenchServer.h"
#include "support/BrowserKind.h"
#include "support/Leftovers.h"
#include "support/PumpUntil.h"
#include "support/TemporaryHome.h"

using namespace test_support;

namespace {

constexpr int kPages = 2000;
constexpr int kConnects = 500;
constexpr long kMaxGrowthKiB = 4096;

long ResidentKiB() {
    ::malloc_trim(0); // what the allocator merely keeps is not held
    std::ifstream status("/proc/self/status");
    for (std::string line; std::getline(status, line);)
        if (line.starts_with("VmRSS:")) return std::stol(line.substr(6));
    return 0;
}

long OpenDescriptors() {
    const std::filesystem::directory_iterator all("/proc/self/fd");
    return std::distance(begin(all), end(all));
}

struct Held {
    long residentKiB = ResidentKiB();
    long descriptors = OpenDescriptors();
    std::size_t children = RunningChildren().size();
};

void ExpectNoMore(const Held& before, const std::string& what) {
    const Held now;
    std::cout << what << ": resident " << before.residentKiB << " KiB, then " << now.residentKiB
              << " KiB; descriptors " << before.descriptors << ", then " << now.descriptors
              << "; children " << before.children << ", then " << now.children << std::endl;
    EXPECT_LE(now.residentKiB, before.residentKiB + kMaxGrowthKiB) << what;
    EXPECT_LE(now.descriptors, before.descriptors) << what;
    EXPECT_LE(now.children, before.children) << what;
}

class Soak : public OverBrowserKinds {
protected:
    // Its own process, so that what it keeps is not counted; it answers posts, too.
    static BenchServer::Setup Pages() {
        const auto location = [](const std::string& path, const std::string& page) {
            return "location = " + path + " { default_type text/html; return 200 '" + page + "'; }";
        };
        return {"",
                location("/posted", "<p>" + std::string(4000, 'x')) +
                    location("/frames", "<iframe src=posted></iframe><iframe src=posted></iframe>"),
                ""};
    }
    void Fetch(CZrHbUHttpGet& getter, int number) {
        char data[] = "a=b";
        const char* path = number % 10 == 0 ? "/frames" : "/posted";
        CString error;
        CString page;
        CString url;
        ASSERT_EQ(getter.Open(CString(m_server.Url(path)), error, number % 2 ? data : nullptr,
                              ~DWORD{0}, nullptr, FALSE),
                  ZRHB_OK)
            << error.GetString();
        ASSERT_EQ(getter.BusyRead(page, error, url, 60'000, FALSE, 0, nullptr, nullptr), ZRHB_OK)
            << error.GetString();
    }

    const TemporaryHome m_home;
    BenchServer m_server{Pages()};
};

} // namespace

TEST_P(Soak, ManyPages) {
    CZrHbUHttpGet getter(eAppGroup_2);
    Connect(getter);
    for (int number = 0; number < kPages / 10; ++number)
        Fetch(getter, number);
    const Held before;
    for (int number = 0; number < kPages && !HasFatalFailure(); ++number)
        Fetch(getter, number);
    ExpectNoMore(before, "pages");
}

TEST_P(Soak, ManyConnects) {
    const ProfileDirectories profiles;
    const auto batch = [&] {
        for (int number = 0; number < kConnects / 10 && !HasFatalFailure(); ++number) {
            CZrHbUHttpGet getter(eAppGroup_2);
            Connect(getter);
            Fetch(getter, number);
            getter.Disconnect(0);
        }
        PumpUntil([] { return RunningChildren().size() == 1; }, "the end of the browsers");
    };
    batch();
    const Held before;
    for (int number = 1; number < 10; ++number) {
        batch();
        ExpectNoMore(before, "batch " + std::to_string(number + 1));
    }
    EXPECT_EQ(profiles.LeftBehind(), std::vector<std::string>());
}

INSTANTIATE_TEST_SUITE_P(Over, Soak, OverBrowserKinds::All(), OverBrowserKinds::NameOf);
